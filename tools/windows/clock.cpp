#include "clock.h"

namespace nvx::tool {

std::optional<std::tm> LocalTime(std::time_t seconds) {
  std::tm parts{};
  if (::localtime_s(&parts, &seconds) != 0) return std::nullopt;
  return parts;
}

std::time_t SecondsOfUtc(std::tm parts) { return ::_mkgmtime(&parts); }

}  // namespace nvx::tool
