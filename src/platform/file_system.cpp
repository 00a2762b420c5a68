#include "platform/file_system.h"

namespace nvx::platform {

FileNameParts SplitFileName(std::u16string_view path) {
  const std::size_t slash = path.find_last_of(u"/\\");
  const std::u16string_view file = slash == path.npos ? path : path.substr(slash + 1);
  const std::size_t point = file.rfind(u'.');
  if (point == file.npos) return {file, {}};
  return {file.substr(0, point), file.substr(point)};
}

}  // namespace nvx::platform
