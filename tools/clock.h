// The present time, and local time.
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace nvx::tool {

// Seconds since 1970: SOURCE_DATE_EPOCH where it is set, so that what is written can be reproduced.
std::int64_t PresentTime();

// The moment by the clocks of this place; nothing for one that they do not show.
std::optional<std::tm> LocalTime(std::time_t seconds);

// The moment of a time in UTC, as mktime has it of a local one; -1 for none.
std::time_t SecondsOfUtc(std::tm parts);

}  // namespace nvx::tool
