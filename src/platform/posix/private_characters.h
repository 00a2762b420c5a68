// Where the code pages of the vendor have a private character and iconv has none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace nvx::platform {

// `byte` is the second half of a character of two bytes, or all of one of one byte, whose `lead` is 0.
std::optional<char16_t> PrivateCharacter(std::uint32_t page, unsigned char lead, unsigned char byte);

// The bytes of a character that PrivateCharacter gives; empty if it is none of that code page.
std::string PrivateBytes(std::uint32_t page, char16_t character);

}  // namespace nvx::platform
