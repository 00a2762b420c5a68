// Variables of the environment, looked up at each call.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <system_error>

namespace nvx::platform {

// UTF-8. Nothing for a variable that is not set or empty.
std::optional<std::string> EnvironmentVariable(const char* name);

// A variable as a number; nothing unless all of its text is one that fits.
template <class Number>
std::optional<Number> EnvironmentNumber(const char* name) {
  const std::optional<std::string> text = EnvironmentVariable(name);
  if (!text) return std::nullopt;
  Number number = 0;
  const char* const end = text->data() + text->size();
  const auto [rest, error] = std::from_chars(text->data(), end, number);
  if (error != std::errc() || rest != end) return std::nullopt;
  return number;
}

}  // namespace nvx::platform
