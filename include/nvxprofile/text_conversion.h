// Text between its encodings, as the library itself converts it.
#pragma once

#include <nvxprofile/export.h>

#include <string>
#include <string_view>

namespace nvx {

// UTF-8. Half a surrogate pair and broken UTF-8 become U+FFFD.
NVX_EXPORT std::string WideToUtf8(std::u16string_view text);
NVX_EXPORT std::u16string Utf8ToWide(std::string_view text);

// A path as programs of the system write it, and as the operations of this library take it. On Windows it is UTF-8. On
// a POSIX system a name is bytes, most often UTF-8; a byte that is not becomes the unit 0xDC80 to 0xDCFF, half a
// surrogate pair that no text holds, and comes back as the byte, so that every file can be named. In a text, such as a
// description of a profile by its name, U+FFFD stands for it.
NVX_EXPORT std::string WideToPath(std::u16string_view path);
NVX_EXPORT std::u16string PathToWide(std::string_view path);

// The ANSI code page, in which payloads and text headers hold narrow text: NVXPROFILE_CODEPAGE where it is a number,
// else by the language of the system (Japanese 932, Chinese 936, Korean 949, Russian 1251, others 1252), looked up at
// each call. A byte without a character in the code page is the control character of the same number (0x80 to 0x9F) or
// the private character that the vendor of the code page gives it, and comes back as the byte. What else cannot be
// converted becomes U+FFFD or a question mark.
NVX_EXPORT std::u16string AnsiToWide(std::string_view text);
NVX_EXPORT std::string WideToAnsi(std::u16string_view text);

}  // namespace nvx
