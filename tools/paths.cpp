#include "paths.h"

#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <type_traits>

namespace nvx::tool {

namespace fs = std::filesystem;

// Paths of Windows consist of wide characters, which the standard library would make of a code page.
constexpr bool kHasWidePaths = std::is_same_v<fs::path::value_type, wchar_t>;

fs::path PathOf(std::string_view text) {
  if constexpr (kHasWidePaths) {
    const std::u16string wide = PathToWide(text);
    return fs::path(std::wstring(wide.begin(), wide.end()));
  } else {
    return fs::path(text);
  }
}

std::string TextOf(const fs::path& path) {
  if constexpr (kHasWidePaths) {
    const std::wstring wide = path.wstring();
    return WideToPath(std::u16string(wide.begin(), wide.end()));
  } else {
    return path.string();
  }
}

std::string GenericTextOf(const fs::path& path) {
  std::string text = TextOf(path);
  if constexpr (kHasWidePaths) std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

std::string FileNameOf(std::string_view text) { return TextOf(PathOf(text).filename()); }
std::string TemporaryFolder() { return TextOf(fs::temp_directory_path()); }

}  // namespace nvx::tool
