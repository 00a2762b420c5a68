#include "platform/clock.h"

#include "platform/environment.h"

#include <ctime>

namespace nvx::platform {

std::int64_t CurrentTime() { return EnvironmentNumber<std::int64_t>("SOURCE_DATE_EPOCH").value_or(std::time(nullptr)); }

SYSTEMTIME SystemTimeOf(const std::tm& parts) {
  SYSTEMTIME time{};
  time.wYear = static_cast<std::uint16_t>(1900 + parts.tm_year);
  time.wMonth = static_cast<std::uint16_t>(parts.tm_mon + 1);
  time.wDay = static_cast<std::uint16_t>(parts.tm_mday);
  time.wHour = static_cast<std::uint16_t>(parts.tm_hour);
  time.wMinute = static_cast<std::uint16_t>(parts.tm_min);
  time.wSecond = static_cast<std::uint16_t>(parts.tm_sec);
  return time;
}

std::optional<SYSTEMTIME> LocalTime(std::int64_t seconds) {
  constexpr std::int64_t kEndOfYear3000 = 32'535'215'999;
  std::tm parts{};
  if (seconds < 0 || seconds > kEndOfYear3000 || !ToLocal(seconds, parts)) return std::nullopt;
  return SystemTimeOf(parts);
}

}  // namespace nvx::platform
