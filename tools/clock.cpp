#include "clock.h"

#include <cstdlib>
#include <ctime>

namespace nvx::tool {

std::int64_t PresentTime() {
  const char* const fixed = std::getenv("SOURCE_DATE_EPOCH");
  return fixed != nullptr ? std::strtoll(fixed, nullptr, 10) : std::time(nullptr);
}

}  // namespace nvx::tool
