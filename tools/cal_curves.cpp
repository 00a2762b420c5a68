#include "cal_curves.h"

#include "curve_view.h"
#include "monotone_curve.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

namespace nvx::tool {
namespace {

std::string ColorantOf(const CCurveDataEntry& curve, const InkTable& inks) {
  return inks.ColorantOf(curve.GetInkID(), NameOf(curve));
}

// Position of a sample in the span of inputs.
double InputOf(std::uint32_t index, std::uint32_t count) { return index / (count - 1.0); }

void CheckDistinct(const std::vector<CCurveDataEntry*>& curves, const InkTable& inks) {
  std::map<std::string, std::uint32_t> taken;
  for (CCurveDataEntry* const curve : curves) {
    const auto [other, isNew] = taken.emplace(ColorantOf(*curve, inks), curve->GetInkID());
    if (isNew) continue;
    throw std::runtime_error(
        other->second == curve->GetInkID()
            ? fmt::format("the ink {} has several curves; choose one with --extend", curve->GetInkID())
            : fmt::format("the inks {} and {} both stand for {}; --inks tells them apart", other->second,
                          curve->GetInkID(), other->first));
  }
}

void CheckCounts(const std::vector<CCurveDataEntry*>& curves) {
  if (curves.empty()) throw std::runtime_error("there are no curves");
  for (CCurveDataEntry* const curve : curves) {
    if (curve->GetCount() < 2) {
      throw std::runtime_error(
          fmt::format("the curve of ink {} has {} samples, and two are needed", curve->GetInkID(), curve->GetCount()));
    }
    if (curve->GetCount() != curves.front()->GetCount()) {
      throw std::runtime_error(
          fmt::format("the curves of the inks {} and {} have {} and {} samples; write each by itself with --ink",
                      curves.front()->GetInkID(), curve->GetInkID(), curves.front()->GetCount(), curve->GetCount()));
    }
  }
}

std::vector<double> OutputsOf(CCurveDataEntry& curve) {
  std::vector<double> outputs;
  for (const std::uint32_t sample : SamplesOf(curve)) outputs.push_back(sample / double{curve.GetMaxBitValue()});
  return outputs;
}

std::uint32_t SampleOf(double output, CCurveDataEntry& curve) {
  return static_cast<std::uint32_t>(std::lround(std::clamp(output, 0.0, 1.0) * curve.GetMaxBitValue()));
}

std::size_t IndexIn(const CalFile& file, const std::string& colorant) {
  const auto found = std::find_if(file.curves.begin(), file.curves.end(),
                                  [&](const CalCurve& curve) { return curve.colorant == colorant; });
  return static_cast<std::size_t>(found - file.curves.begin());
}

std::vector<CCurveDataEntry*> CurvesOfChild(CContainerEntry& calibration, std::uint32_t usedType) {
  auto* const entry = dynamic_cast<CProfileCurveEntry*>(calibration.GetProfileDataEntry(usedType, 0));
  return entry != nullptr && entry->BufferToData() ? CurvesOf(*entry->GetCurveData()) : std::vector<CCurveDataEntry*>();
}

// What an ink limit curve lets through, if it does nothing else than that: straight up to there, and level.
double LimitOf(CCurveDataEntry& curve) {
  const std::vector<std::uint32_t> samples = SamplesOf(curve);
  const double greatest = curve.GetMaxBitValue();
  const std::uint32_t limit = samples.empty() ? 0 : *std::max_element(samples.begin(), samples.end());
  for (std::uint32_t i = 0; i < samples.size(); ++i) {
    const double straight = samples.size() > 1 ? InputOf(i, curve.GetCount()) * greatest : greatest;
    if (std::abs(std::min<double>(limit, straight) - samples[i]) > 1) {
      throw std::runtime_error(fmt::format(
          "the ink limit curve of ink {} does more than to cut, and a calibration file states a limit alone",
          curve.GetInkID()));
    }
  }
  if (limit == 0) throw std::runtime_error(fmt::format("the ink limit of ink {} is 0", curve.GetInkID()));
  return limit / greatest;
}

}  // namespace

CalFile CurvesToCal(const std::vector<CCurveDataEntry*>& curves, const InkTable& inks) {
  CheckCounts(curves);
  CheckDistinct(curves, inks);
  CalFile file;
  const std::uint32_t count = curves.front()->GetCount();
  for (std::uint32_t i = 0; i < count; ++i) file.inputs.push_back(InputOf(i, count));
  for (CCurveDataEntry* const curve : curves) {
    file.curves.push_back({ColorantOf(*curve, inks), OutputsOf(*curve)});
  }
  return file;
}

CalFile CalibrationToCal(CContainerEntry& calibration, const InkTable& inks) {
  const std::vector<CCurveDataEntry*> curves = CurvesOfChild(calibration, CProfileDataEntry::kCalibrationLinearization);
  if (curves.empty()) throw std::runtime_error("the calibration has no linearization that can be read");
  CalFile file = CurvesToCal(curves, inks);
  const std::vector<CCurveDataEntry*> limits = CurvesOfChild(calibration, CProfileDataEntry::kCalibrationInklimit);
  if (limits.empty()) return file;
  file.limits.assign(curves.size(), 1);
  for (CCurveDataEntry* const limit : limits) {
    const std::size_t index = IndexIn(file, ColorantOf(*limit, inks));
    if (index == file.curves.size()) {
      throw std::runtime_error(fmt::format("the ink {} has an ink limit and no linearization", limit->GetInkID()));
    }
    file.limits[index] = LimitOf(*limit);
  }
  return file;
}

std::vector<CCurveDataEntry*> CurvesInCal(const CalFile& file, const InkTable& inks,
                                          const std::vector<CCurveDataEntry*>& curves, Fit fit) {
  CheckDistinct(curves, inks);
  std::vector<CCurveDataEntry*> fitting;
  std::set<std::string> used;
  std::vector<std::string> missing;
  for (CCurveDataEntry* const curve : curves) {
    const std::string colorant = ColorantOf(*curve, inks);
    if (IndexIn(file, colorant) == file.curves.size()) {
      missing.push_back(fmt::format("{} (ink {})", colorant, curve->GetInkID()));
    } else if (curve->GetCount() < 2) {
      throw std::runtime_error(
          fmt::format("the curve of ink {} has {} samples, and two are needed", curve->GetInkID(), curve->GetCount()));
    } else {
      fitting.push_back(curve);
      used.insert(colorant);
    }
  }
  if (fitting.empty()) throw std::runtime_error("the file is for other inks");
  if (fit == Fit::kPartial) return fitting;
  if (!missing.empty()) {
    throw std::runtime_error(
        fmt::format("the file has no curve of {}; --partial leaves such inks as they are", fmt::join(missing, ", ")));
  }
  for (const CalCurve& curve : file.curves) {
    if (!used.contains(curve.colorant)) {
      throw std::runtime_error(fmt::format(
          "the file has a curve of {}, and the profile no such ink; --partial leaves it out", curve.colorant));
    }
  }
  return fitting;
}

void TakeOutputs(const CalFile& file, const InkTable& inks, const std::vector<CCurveDataEntry*>& curves) {
  for (CCurveDataEntry* const curve : curves) {
    const MonotoneCurve outputs(file.inputs, file.curves[IndexIn(file, ColorantOf(*curve, inks))].outputs);
    for (std::uint32_t i = 0; i < curve->GetCount(); ++i) {
      curve->SetAt(i, SampleOf(outputs.At(InputOf(i, curve->GetCount())), *curve));
    }
  }
}

void CutAtLimits(const CalFile& file, const InkTable& inks, const std::vector<CCurveDataEntry*>& curves) {
  if (file.limits.empty()) return;
  for (CCurveDataEntry* const curve : curves) {
    const std::uint32_t limit = SampleOf(file.limits[IndexIn(file, ColorantOf(*curve, inks))], *curve);
    std::uint32_t sample = 0;
    for (std::uint32_t i = 0; curve->GetAt(i, sample); ++i) curve->SetAt(i, std::min(sample, limit));
  }
}

std::unique_ptr<CCalibrationInklimitEntry> InkLimitOf(const CalFile& file, const InkTable& inks,
                                                      const std::vector<CCurveDataEntry*>& curves) {
  if (file.limits.empty()) return nullptr;
  auto entry = std::make_unique<CCalibrationInklimitEntry>();
  CCurveData& limits = *entry->GetCurveData();
  limits.SetUsedType(entry->GetUsedType());
  for (CCurveDataEntry* const curve : curves) {
    auto limit = std::make_unique<CCurveDataEntry16>();
    curve->Copy(*limit);
    limit->SetExtendInfo(kInkLimitKey);
    for (std::uint32_t i = 0; i < limit->GetCount(); ++i) {
      limit->SetAt(i, SampleOf(InputOf(i, limit->GetCount()), *limit));
    }
    limits.AddTail(limit.release());
  }
  CutAtLimits(file, inks, CurvesOf(limits));
  return entry;
}

}  // namespace nvx::tool
