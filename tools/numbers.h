// Numbers as people write them.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace nvx::tool {

// The number that the whole text is, in the way of a C program and without blanks; nothing for any other text, and for
// a number that the type does not hold.
template <class Number>
std::optional<Number> NumberOf(std::string_view text) {
  Number number{};
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && rest == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

}  // namespace nvx::tool
