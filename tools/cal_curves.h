// Curves of a profile as a calibration file, and back.
#pragma once

#include "cal_file.h"
#include "colorants.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/curve.h>

#include <memory>
#include <vector>

namespace nvx::tool {

// The curves as a calibration file without stated limits, one input for each sample. Throws std::runtime_error for
// curves that make no such file: two of one ink, different sample counts, less than two samples, an ink that stands for
// no colorant.
CalFile CurvesToCal(const std::vector<CCurveDataEntry*>& curves, const InkTable& inks);

// The curves of one calibration: its linearization, and as limits what its ink limit curves let through. Throws
// std::runtime_error, also for an ink limit curve that does more than to cut.
CalFile CalibrationToCal(CContainerEntry& calibration, const InkTable& inks);

enum class Fit {
  kWhole,    // every ink has a curve in the file, and every curve of the file an ink
  kPartial,  // what both have is taken, and that is one ink at least
};

// The curves that the file has something for. Throws std::runtime_error if the inks do not fit.
std::vector<CCurveDataEntry*> CurvesInCal(const CalFile& file, const InkTable& inks,
                                          const std::vector<CCurveDataEntry*>& curves, Fit fit);

// Gives each of these curves the samples of the file, resampled to its own sample count.
void TakeOutputs(const CalFile& file, const InkTable& inks, const std::vector<CCurveDataEntry*>& curves);
// Cuts each of these curves at the limit that the file states.
void CutAtLimits(const CalFile& file, const InkTable& inks, const std::vector<CCurveDataEntry*>& curves);
// An ink limit curve for each of these curves: straight up to the limit that the file states, and level from there.
std::unique_ptr<CCalibrationInklimitEntry> InkLimitOf(const CalFile& file, const InkTable& inks,
                                                      const std::vector<CCurveDataEntry*>& curves);

}  // namespace nvx::tool
