// How the calibrations of a profile follow each other.
#pragma once

#include "curve_difference.h"
#include "payload.h"

#include <nvxprofile/calibration.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace nvx::tool {

// The greatest change of each ink in one kind of curves, by ink colour code.
using InkChanges = std::map<std::uint32_t, CurveDifference>;

struct TimelineStep {
  CContainerEntry* calibration = nullptr;
  // Against the calibration before, by entry type; inks and kinds that only one of the two has are left out.
  std::map<std::uint32_t, InkChanges> changes;
};

// The calibrations by ascending time, those of one time in the order of the history.
std::vector<TimelineStep> TimelineOf(CCalibrationHistoryEntry& history);

void PrintTimeline(const std::vector<TimelineStep>& steps);
Json TimelineToJson(const std::vector<TimelineStep>& steps);

}  // namespace nvx::tool
