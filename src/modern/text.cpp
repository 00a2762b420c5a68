// Text between UTF-8 and the fields of profiles.
#include "core/text.h"
#include "modern/profile_state.h"

#include <nvxprofile/text_conversion.h>

namespace nvx {
namespace {

[[noreturn]] void RefuseText(const char* what, const std::string& why) { Fail(std::string(what) + ": " + why); }

void RefuseLonger(const char* what, std::size_t most) {
  RefuseText(what, "longer than its " + std::to_string(most) + " characters");
}

}  // namespace

std::u16string WideField(std::string_view text, std::size_t most, const char* what) {
  std::u16string wide = Utf8ToWide(text);
  if (WideToUtf8(wide) != text) RefuseText(what, "no UTF-8");
  if (wide.find(u'\0') != wide.npos) RefuseText(what, "holds a zero");
  if (wide.size() > most) RefuseLonger(what, most);
  return wide;
}

std::string AnsiField(std::string_view text, std::size_t most, const char* what) {
  const std::u16string wide = WideField(text, std::u16string::npos, what);
  std::string narrow = WideToAnsi(wide);
  if (AnsiToWide(narrow) != wide) RefuseText(what, "a character is not in the ANSI code page");
  if (narrow.size() > most) RefuseLonger(what, most);
  return narrow;
}

std::string Utf8OfAnsi(std::string_view text) { return WideToUtf8(AnsiToWide(text)); }

}  // namespace nvx
