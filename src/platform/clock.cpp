#include "platform/clock.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace nvx::platform {

std::int64_t CurrentTime() {
  if (const char* const text = std::getenv("SOURCE_DATE_EPOCH")) {
    std::int64_t seconds = 0;
    const char* const end = text + std::strlen(text);
    const auto [rest, error] = std::from_chars(text, end, seconds);
    if (error == std::errc() && rest == end && rest != text) return seconds;
  }
  return std::time(nullptr);
}

std::optional<SYSTEMTIME> LocalTime(std::int64_t seconds) {
  constexpr std::int64_t kEndOfYear3000 = 32'535'215'999;
  if (seconds < 0 || seconds > kEndOfYear3000) return std::nullopt;
  const std::time_t value = seconds;
  std::tm parts{};
  ::tzset();
  if (::localtime_r(&value, &parts) == nullptr) return std::nullopt;
  SYSTEMTIME time;
  time.wYear = static_cast<std::uint16_t>(1900 + parts.tm_year);
  time.wMonth = static_cast<std::uint16_t>(parts.tm_mon + 1);
  time.wDay = static_cast<std::uint16_t>(parts.tm_mday);
  time.wHour = static_cast<std::uint16_t>(parts.tm_hour);
  time.wMinute = static_cast<std::uint16_t>(parts.tm_min);
  time.wSecond = static_cast<std::uint16_t>(parts.tm_sec);
  return time;
}

}  // namespace nvx::platform
