#include "core/form.h"

namespace nvx {

const RecordConstant* FindWrong(std::span<const RecordConstant> constants, const std::uint8_t* bytes) {
  const auto wrong = std::find_if(constants.begin(), constants.end(), [=](const RecordConstant& constant) {
    return LoadLittle<std::uint32_t>(bytes + constant.offset) != constant.value;
  });
  return wrong != constants.end() ? &*wrong : nullptr;
}

bool CheckConstants(CNvxFile& file, std::uint64_t start, std::string_view title,
                    std::span<const RecordConstant> constants, const std::uint8_t* bytes) {
  const RecordConstant* const wrong = FindWrong(constants, bytes);
  if (wrong == nullptr) return true;
  return RefuseAt(file, start + wrong->offset, std::string(title) + ": wrong " + std::string(wrong->name));
}

bool RefuseCutShort(CNvxFile& file, std::string_view title) { return Refuse(file, std::string(title) + ": cut short"); }

bool RefuseCount(CNvxFile& file, std::string_view title) {
  return Refuse(file, std::string(title) + ": count beyond the end");
}

}  // namespace nvx
