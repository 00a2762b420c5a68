#include "clock.h"

namespace nvx::tool {

std::optional<std::tm> LocalTime(std::time_t seconds) {
  std::tm parts{};
  if (::localtime_r(&seconds, &parts) == nullptr) return std::nullopt;
  return parts;
}

std::time_t SecondsOfUtc(std::tm parts) { return ::timegm(&parts); }

}  // namespace nvx::tool
