#include "platform/environment.h"

#include "platform/locale.h"
#include "platform/windows/wide.h"

#include <windows.h>

namespace nvx::platform {

std::optional<std::string> EnvironmentVariable(const char* name) {
  const std::u16string wide = Utf8ToWide(name);
  std::wstring value(128, L'\0');
  while (true) {
    const DWORD size = ::GetEnvironmentVariableW(Native(wide.c_str()), value.data(), static_cast<DWORD>(value.size()));
    if (size == 0) return std::nullopt;
    const bool whole = size < value.size();
    value.resize(size);
    if (whole) return WideToUtf8(Units(value));
  }
}

}  // namespace nvx::platform
