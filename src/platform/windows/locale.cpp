#include "platform/locale.h"

#include "platform/environment.h"
#include "platform/windows/wide.h"

#include <windows.h>

#include <algorithm>
#include <array>

namespace nvx::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr char kUnknown = '?';
constexpr std::size_t kLongestPiece = std::size_t{1} << 24;  // the system counts characters in an int

std::optional<std::uint16_t> ChosenLanguage() {
  const auto name = EnvironmentVariable("NVXPROFILE_LANGUAGE");
  return name ? LanguageNumber(*name) : std::nullopt;
}

// Converts text that converts as a whole; false, with nothing added, otherwise. The flags of the system say whether
// bytes that stand for private characters are let through.
bool AppendWide(std::uint32_t page, std::string_view text, std::u16string& out, DWORD flags = MB_ERR_INVALID_CHARS) {
  const std::size_t start = out.size();
  out.resize(start + text.size());  // no character of a code page takes more units than bytes
  const int size = ::MultiByteToWideChar(page, flags, text.data(), static_cast<int>(text.size()),
                                         reinterpret_cast<wchar_t*>(out.data() + start), static_cast<int>(text.size()));
  out.resize(start + static_cast<std::size_t>(size));
  return size != 0;
}

bool AppendNarrow(std::uint32_t page, std::u16string_view text, std::string& out) {
  constexpr std::size_t kLongestCharacter = 8;
  const std::size_t start = out.size();
  out.resize(start + kLongestCharacter * text.size());
  BOOL substituted = FALSE;
  const int size =
      ::WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, Native(text.data()), static_cast<int>(text.size()),
                            out.data() + start, static_cast<int>(out.size() - start), &kUnknown, &substituted);
  out.resize(start + (substituted == FALSE ? static_cast<std::size_t>(size) : 0));
  return size != 0 && substituted == FALSE;
}

std::size_t FirstCharacter(std::uint32_t page, std::string_view text) {
  return IsLeadByte(page, text.front()) && text.size() > 1 ? 2 : 1;
}

std::size_t FirstCharacter(std::u16string_view text) {
  const bool pair = text.size() > 1 && text[0] >= 0xD800 && text[0] < 0xDC00 && text[1] >= 0xDC00 && text[1] < 0xE000;
  return pair ? 2 : 1;
}

void AppendEachWide(std::uint32_t page, std::string_view text, std::u16string& out) {
  while (!text.empty()) {
    std::size_t size = FirstCharacter(page, text);
    const bool half = size == 1 && IsLeadByte(page, text.front());
    if (!AppendWide(page, text.substr(0, size), out) &&
        (half || size == 2 || !AppendWide(page, text.substr(0, 1), out, 0))) {
      out += kReplacement;
      size = 1;
    }
    text.remove_prefix(size);
  }
}

void AppendEachNarrow(std::uint32_t page, std::u16string_view text, std::string& out) {
  while (!text.empty()) {
    const std::size_t size = FirstCharacter(text);
    if (!AppendNarrow(page, text.substr(0, size), out)) out += kUnknown;
    text.remove_prefix(size);
  }
}

bool IsConverted(std::uint32_t page) { return page != kCodePageUtf8 && ::IsValidCodePage(page) != FALSE; }

}  // namespace

std::uint16_t PrimaryLanguage() {
  const auto chosen = ChosenLanguage();
  return chosen ? *chosen : static_cast<std::uint16_t>(PRIMARYLANGID(::GetSystemDefaultLangID()));
}

std::uint32_t AnsiCodePage() {
  if (const auto page = EnvironmentNumber<std::uint32_t>("NVXPROFILE_CODEPAGE")) return *page;
  const auto chosen = ChosenLanguage();
  return chosen ? CodePageOf(*chosen) : ::GetACP();
}

std::u16string AnsiToWide(std::string_view text) {
  const std::uint32_t page = AnsiCodePage();
  if (!IsConverted(page)) return Utf8ToWide(text);
  std::u16string out;
  if (text.size() > kLongestPiece || !AppendWide(page, text, out)) AppendEachWide(page, text, out);
  return out;
}

std::string WideToAnsi(std::u16string_view text) {
  const std::uint32_t page = AnsiCodePage();
  if (!IsConverted(page)) return WideToUtf8(text);
  std::string out;
  if (text.size() > kLongestPiece || !AppendNarrow(page, text, out)) AppendEachNarrow(page, text, out);
  return out;
}

}  // namespace nvx::platform
