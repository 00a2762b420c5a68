#include "console.h"

#include <nvxprofile/text_conversion.h>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace nvx::tool {

Console::Console() : before_(::GetConsoleOutputCP()) {
  ::SetConsoleOutputCP(CP_UTF8);
  ::_setmode(::_fileno(stdin), _O_BINARY);
  ::_setmode(::_fileno(stdout), _O_BINARY);
}

Console::~Console() {
  std::fflush(stdout);
  std::fflush(stderr);
  if (before_ != 0) ::SetConsoleOutputCP(before_);
}

std::vector<std::string> Arguments(int, char**) {
  int count = 0;
  wchar_t** const texts = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) {
    const std::wstring_view text(texts[i]);
    arguments.push_back(WideToUtf8({reinterpret_cast<const char16_t*>(text.data()), text.size()}));
  }
  ::LocalFree(texts);
  return arguments;
}

void SetVariable(const char* name, const char* value) { ::_putenv_s(name, value); }

}  // namespace nvx::tool
