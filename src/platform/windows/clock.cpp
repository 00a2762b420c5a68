#include "platform/clock.h"

namespace nvx::platform {

bool ToLocal(std::time_t seconds, std::tm& parts) {
  ::_tzset();
  return ::localtime_s(&parts, &seconds) == 0;
}

}  // namespace nvx::platform
