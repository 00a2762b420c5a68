// The current time and local time. Nothing here is cached: TZ and SOURCE_DATE_EPOCH count at each call.
#pragma once

#include <nvxprofile/system_time.h>

#include <cstdint>
#include <ctime>
#include <optional>

namespace nvx::platform {

// Seconds since 1970: SOURCE_DATE_EPOCH where it is set to a number, else the clock.
std::int64_t CurrentTime();

// Local broken-down time without day of week and milliseconds, which stay 0. Nothing for a negative time and for one
// beyond the year 3000, which the conversion refuses.
std::optional<SYSTEMTIME> LocalTime(std::int64_t seconds);

// Year, month, day, hour, minute and second of broken-down time; the rest is 0.
SYSTEMTIME SystemTimeOf(const std::tm& parts);

// The parts of a time in the zone that counts now; false if the system refuses.
bool ToLocal(std::time_t seconds, std::tm& parts);

}  // namespace nvx::platform
