// Changes of the calibration history of a profile. What a change does not name keeps its bytes, also where they do not
// parse. Nothing is written before SaveHistory.
#pragma once

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>
#include <nvxprofile/profile_access.h>

#include <cstdint>
#include <string>

namespace nvx::tool {

// The history of a loaded profile of the current generation, made if there is none. Throws std::runtime_error for
// profiles of other formats and for a history that does not parse.
CCalibrationHistoryEntry& EditableHistory(CProfileAccess& access);

// The calibration with that code; throws std::runtime_error if there is none.
CContainerEntry& CalibrationOf(CCalibrationHistoryEntry& history, std::uint32_t code);

// The name for a calibration; throws std::runtime_error for one that is empty or longer than the 20 characters that a
// profile keeps.
std::u16string CalibrationName(const std::string& name);

// Brings the buffer of the history up to date and saves the profile. False, with the reason on standard error, if that
// fails; throws std::runtime_error for a history beyond 4 GiB.
bool SaveHistory(CProfileAccess& access, const std::string& path);

}  // namespace nvx::tool
