#include "platform/clock.h"

namespace nvx::platform {

bool ToLocal(std::time_t seconds, std::tm& parts) {
  ::tzset();
  return ::localtime_r(&seconds, &parts) != nullptr;
}

}  // namespace nvx::platform
