#include "console.h"

#include <nvxprofile/text_conversion.h>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace nvx::tool {
namespace {

HANDLE HandleOf(std::FILE* stream) { return reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream))); }

// Colours are sequences of characters, as on any other terminal.
void ShowColours(std::FILE* stream) {
  DWORD mode = 0;
  if (::GetConsoleMode(HandleOf(stream), &mode) == FALSE) return;
  ::SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

Console::Console() : codePage_(::GetConsoleOutputCP()) {
  ::SetConsoleOutputCP(CP_UTF8);
  for (std::FILE* const stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
  for (std::FILE* const stream : {stdout, stderr}) ShowColours(stream);
}

Console::~Console() {
  std::fflush(stdout);
  std::fflush(stderr);
  if (codePage_ != 0) ::SetConsoleOutputCP(codePage_);
}

std::vector<std::string> Arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> texts(::CommandLineToArgvW(::GetCommandLineW(), &count),
                                                                &::LocalFree);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) {
    const std::wstring_view native(texts.get()[i]);
    const std::u16string text(native.begin(), native.end());
    arguments.push_back(WideToUtf8(text));
    // Half a surrogate pair would name another file.
    if (Utf8ToWide(arguments.back()) != text) throw std::runtime_error(arguments.back() + ": is no Unicode text");
  }
  return arguments;
}

bool IsTerminal(std::FILE* stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(HandleOf(stream), &mode) != FALSE;
}

bool ShowsUtf8() { return true; }

void SetVariable(const char* name, const std::string& value) { ::_putenv_s(name, value.c_str()); }

}  // namespace nvx::tool
