// Changes of the calibration history of a profile. What a change does not name keeps its bytes, also where they do not
// parse. Nothing is written before SaveHistory. All operations throw std::runtime_error.
#pragma once

#include "saving.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>

#include <cstdint>
#include <string>

namespace nvx::tool {

// The history of a profile of the current generation, made if there is none. Throws for profiles of other formats and
// for a history that does not parse whole.
CCalibrationHistoryEntry& EditableHistory(ChangedProfile& profile);

// The calibration with that code; throws if there is none.
CContainerEntry& CalibrationOf(CCalibrationHistoryEntry& history, std::uint32_t code);

// Appends a calibration and gives its code.
std::uint32_t Append(CCalibrationHistoryEntry& history, NewCalibration calibration);

// The name for a calibration; throws for one that is empty or longer than the 20 characters that a profile keeps.
std::u16string CalibrationName(const std::string& name);

// Brings the buffer of the history up to date and writes the profile. Throws for a history beyond 4 GiB and as
// ChangedProfile::Save does.
void SaveHistory(ChangedProfile& profile, const std::string& path);

}  // namespace nvx::tool
