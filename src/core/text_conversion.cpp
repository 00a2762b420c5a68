#include "platform/file_system.h"
#include "platform/locale.h"

#include <nvxprofile/text_conversion.h>

namespace nvx {

std::string WideToUtf8(std::u16string_view text) { return platform::WideToUtf8(text); }
std::u16string Utf8ToWide(std::string_view text) { return platform::Utf8ToWide(text); }
std::string WideToPath(std::u16string_view path) { return platform::WideToPath(path); }
std::u16string PathToWide(std::string_view path) { return platform::PathToWide(path); }
std::u16string AnsiToWide(std::string_view text) { return platform::AnsiToWide(text); }
std::string WideToAnsi(std::u16string_view text) { return platform::WideToAnsi(text); }

}  // namespace nvx
