// The present time.
#pragma once

#include <cstdint>

namespace nvx::tool {

// Seconds since 1970: SOURCE_DATE_EPOCH where it is set, so that what is written can be reproduced.
std::int64_t PresentTime();

}  // namespace nvx::tool
