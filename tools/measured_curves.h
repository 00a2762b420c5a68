// Measured curves as comma-separated values, in the columns that curves --csv writes.
#pragma once

#include <nvxprofile/calibration_history.h>

#include <set>
#include <string_view>

namespace nvx::tool {

// The curves of a new calibration, without its name and time. The first line names the columns: ink, index and sample
// are needed, entry, extend and name are optional and others are not looked at. Each line is one sample of 16 bits;
// those of a curve stand together, by ascending index from 0. An entry is linearization (so without that column),
// ink-limit or gray-balance. Throws TextError, also for an ink that is not among `inks`, unless that is empty.
NewCalibration ReadMeasuredCurves(std::string_view text, const std::set<std::uint32_t>& inks);

}  // namespace nvx::tool
