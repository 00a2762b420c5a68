// Calibrations for people.
#pragma once

#include <nvxprofile/calibration.h>
#include <nvxprofile/profile_data.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace nvx::tool {

// Characters that a profile keeps of the name of a calibration.
inline constexpr std::size_t kLongestCalibrationName = 20;

// The calibration history of a profile; null if there is none.
CCalibrationHistoryEntry* HistoryOf(CProfileData& data);

// The calibrations of a history, in order.
std::vector<CContainerEntry*> CalibrationsOf(CCalibrationHistoryEntry& history);

// The name of a calibration in UTF-8.
std::string NameOf(CContainerEntry& calibration);

// Seconds since 1970 as local time; the number itself where no calendar goes, and "-" for 0.
std::string TimeText(std::int64_t seconds);

}  // namespace nvx::tool
