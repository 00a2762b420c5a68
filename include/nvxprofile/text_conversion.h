// Text between its encodings, as the library itself converts it.
#pragma once

#include <nvxprofile/export.h>

#include <string>
#include <string_view>

namespace nvx {

// UTF-8, in which a POSIX system names its files. Half a surrogate pair and broken UTF-8 become U+FFFD.
NVX_EXPORT std::string WideToUtf8(std::u16string_view text);
NVX_EXPORT std::u16string Utf8ToWide(std::string_view text);

// The ANSI code page, in which payloads and text headers hold narrow text: NVXPROFILE_CODEPAGE where it is a number,
// else by the language of the system (Japanese 932, Chinese 936, Korean 949, Russian 1251, others 1252), looked up at
// each call. A byte without a character in the code page is the control character of the same number (0x80 to 0x9F) or
// the private character that the vendor of the code page gives it, and comes back as the byte. What else cannot be
// converted becomes U+FFFD or a question mark.
NVX_EXPORT std::u16string AnsiToWide(std::string_view text);
NVX_EXPORT std::string WideToAnsi(std::u16string_view text);

}  // namespace nvx
