#include "core/form.h"

namespace nvx {

bool RefuseConstants(CNvxFile& file, std::uint64_t start, std::string_view title,
                     std::span<const RecordConstant> constants, const std::uint8_t* bytes) {
  const auto wrong =
      std::find_if_not(constants.begin(), constants.end(), [=](const auto& c) { return IsRight(c, bytes); });
  return RefuseAt(file, start + wrong->offset, std::string(title) + ": wrong " + std::string(wrong->name));
}

bool RefuseBy(CNvxFile& file, std::string_view title, std::string_view why) {
  return Refuse(file, std::string(title) + ": " + std::string(why));
}

}  // namespace nvx
