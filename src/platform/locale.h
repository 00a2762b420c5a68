// Language and code page of the system, looked up at each call, and text conversion.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nvx::platform {

inline constexpr std::uint16_t kLanguageJapanese = 17;
inline constexpr std::uint16_t kLanguageEnglish = 9;
inline constexpr std::uint32_t kCodePageUtf8 = 65001;

// Primary language number. On a POSIX system from LC_ALL, LC_MESSAGES or LANG, whichever is set first: C, POSIX,
// nothing at all and unknown languages count as English. On Windows NVXPROFILE_LANGUAGE where it names a language, else
// the language of the system.
std::uint16_t PrimaryLanguage();

// NVXPROFILE_CODEPAGE where it is a number. Else on a POSIX system, and on Windows with NVXPROFILE_LANGUAGE, by
// language; otherwise the ANSI code page of the process.
std::uint32_t AnsiCodePage();

// Primary language number of a locale name such as ja_JP.UTF-8 or en-GB.
std::optional<std::uint16_t> LanguageNumber(std::string_view locale);

// The ANSI code page of a language: ja 932, zh 936, ko 949, ru 1251, others 1252.
std::uint32_t CodePageOf(std::uint16_t language);

// True if the byte starts a character of two bytes in a code page of that kind (932, 936, 949, 950).
bool IsLeadByte(std::uint32_t codePage, char byte);

// The longest start of ANSI text with at most `longest` bytes that ends at the end of a character.
std::string_view CutAnsi(std::string_view text, std::size_t longest);

// Conversion between the ANSI code page and UTF-16. A byte of 0x80 to 0x9F without a character in the code page is the
// control character of the same number, one above that the private character that the vendor of the code page gives it,
// and both come back as the byte. What else cannot be converted becomes U+FFFD or a question mark.
std::u16string AnsiToWide(std::string_view text);
std::string WideToAnsi(std::u16string_view text);

// Paths and messages: UTF-8 on the outside of the library. A half of a surrogate pair alone becomes U+FFFD.
std::string WideToUtf8(std::u16string_view text);
std::u16string Utf8ToWide(std::string_view text);

// The same of names that may be any bytes: one that is no UTF-8 is the unit 0xDC00 and the byte, half a surrogate pair
// that no text holds, and that becomes the byte again.
std::string WideToBytes(std::u16string_view name);
std::u16string BytesToWide(std::string_view name);

}  // namespace nvx::platform
