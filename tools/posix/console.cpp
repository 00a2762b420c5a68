#include "console.h"

#include <langinfo.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): the one that POSIX names
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace nvx::tool {

Console::Console() = default;
Console::~Console() = default;

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

bool IsTerminal(std::FILE* stream) { return ::isatty(::fileno(stream)) == 1; }

bool ShowsUtf8() {
  const ::locale_t locale = ::newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return false;
  const bool isUtf8 = std::string_view(::nl_langinfo_l(CODESET, locale)) == "UTF-8";
  ::freelocale(locale);
  return isUtf8;
}

void SetVariable(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

}  // namespace nvx::tool
