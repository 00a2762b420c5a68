#include "semantics.h"

#include "calibration_view.h"
#include "curve_view.h"
#include "loading.h"
#include "lut_nodes.h"

#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace nvx::tool {
namespace {

using Curves = std::vector<CCurveDataEntry*>;

std::string PlaceOf(std::uint32_t usedType) { return fmt::format("entry {} {}", usedType, EntryName(usedType)); }

std::string PlaceOf(std::uint32_t usedType, const CCurveDataEntry& curve) {
  std::string place = fmt::format("{}/ink {}", PlaceOf(usedType), curve.GetInkID());
  if (curve.GetExtendInfo() != 0) place += fmt::format(" extend {}", curve.GetExtendInfo());
  return place;
}

double InputOf(std::size_t index, std::size_t count) {
  return count > 1 ? 100.0 * static_cast<double>(index) / static_cast<double>(count - 1) : 0;
}

class Search {
 public:
  explicit Search(CProfileAccess& access) : data_(*access.GetProfileData()) {}

  std::vector<Finding> Run() {
    FindSaturatedMerges();
    FindFallingCurves();
    FindInksWithoutCurves();
    FindTableBeyondLimits();
    return std::move(findings_);
  }

 private:
  void Add(Severity severity, std::string place, std::string rule) {
    findings_.push_back({severity, std::move(place), 0, std::move(rule)});
  }

  // The curves with samples of an entry; none if there is no such entry or it does not parse.
  Curves CurvesOfType(std::uint32_t usedType) const {
    auto* const entry = dynamic_cast<CProfileCurveEntry*>(data_.GetProfileDataEntryFromList(usedType));
    if (entry == nullptr || !entry->BufferToData()) return {};
    Curves curves = CurvesOf(*entry->GetCurveData());
    std::erase_if(curves, [](CCurveDataEntry* curve) { return curve->GetCount() == 0; });
    return curves;
  }

  CLutData* Table() const {
    auto* const entry =
        dynamic_cast<CSeparateChromaEntry*>(data_.GetProfileDataEntryFromList(CProfileDataEntry::kSeparateChroma));
    return entry != nullptr && entry->BufferToData() ? entry->GetLutData() : nullptr;
  }

  void FindSaturatedMerges() {
    std::map<std::uint32_t, std::uint32_t> counts;
    for (CCurveDataEntry* const curve : CurvesOfType(CProfileDataEntry::kLinearization)) {
      counts.emplace(curve->GetInkID(), curve->GetCount());
    }
    for (CCurveDataEntry* const curve : CurvesOfType(CProfileDataEntry::kGrayBalance)) {
      const auto count = counts.find(curve->GetInkID());
      if (count == counts.end()) continue;
      const std::vector<std::uint32_t> samples = SamplesOf(*curve);
      const auto isBeyond = [&](std::uint32_t sample) { return sample >= count->second; };
      const auto first = std::find_if(samples.begin(), samples.end(), isBeyond);
      if (first == samples.end()) continue;
      Add(Severity::kError, PlaceOf(CProfileDataEntry::kGrayBalance, *curve),
          fmt::format("{} of {} samples, the first at {:.0f} % of the input, are no indices of the linearization of {} "
                      "samples: the merge takes its last one for them",
                      std::count_if(samples.begin(), samples.end(), isBeyond), samples.size(),
                      InputOf(static_cast<std::size_t>(first - samples.begin()), samples.size()), count->second));
    }
  }

  void FindFalls(const std::string& prefix, std::uint32_t usedType, const Curves& curves) {
    for (CCurveDataEntry* const curve : curves) {
      const std::vector<std::uint32_t> samples = SamplesOf(*curve);
      const auto fall = std::adjacent_find(samples.begin(), samples.end(), std::greater<>());
      if (fall == samples.end()) continue;
      const auto index = static_cast<std::size_t>(fall - samples.begin());
      Add(Severity::kError, prefix + PlaceOf(usedType, *curve),
          fmt::format("the curve falls from {} to {} behind {:.0f} % of the input", fall[0], fall[1],
                      InputOf(index, samples.size())));
    }
  }

  void FindFallingCurves() {
    for (const std::uint32_t usedType :
         {CProfileDataEntry::kInkLimit, CProfileDataEntry::kVariableInkLimit, CProfileDataEntry::kLinearization,
          CProfileDataEntry::kGrayBalance, CProfileDataEntry::kMultiInkLimit}) {
      FindFalls("", usedType, CurvesOfType(usedType));
    }
    CCalibrationHistoryEntry* const history = HistoryOf(data_);
    if (history == nullptr) return;
    for (CContainerEntry* const calibration : CalibrationsOf(*history)) {
      for (int i = 0; i < calibration->GetEntryCount(); ++i) {
        auto* const entry = dynamic_cast<CProfileCurveEntry*>(calibration->GetProfileDataEntry(i));
        if (entry == nullptr) continue;
        FindFalls(fmt::format("calibration {}/", calibration->GetOptionInfo()), entry->GetUsedType(),
                  CurvesOf(*entry->GetCurveData()));
      }
    }
  }

  std::set<std::uint32_t> InksOf(std::initializer_list<std::uint32_t> usedTypes) const {
    std::set<std::uint32_t> inks;
    for (const std::uint32_t usedType : usedTypes) {
      for (CCurveDataEntry* const curve : CurvesOfType(usedType)) inks.insert(curve->GetInkID());
    }
    return inks;
  }

  // Codes of the outputs of the separation table; 0 is a code that nobody has set.
  std::set<std::uint32_t> InksOfTable() const {
    std::set<std::uint32_t> inks;
    CLutData* const table = Table();
    for (int i = 0; table != nullptr && table->GetAtOutputChannelInf(i) != nullptr; ++i) {
      inks.insert(table->GetAtOutputChannelInf(i)->GetChannelCode());
    }
    inks.erase(0);
    return inks;
  }

  void FindMissing(Severity severity, const std::set<std::uint32_t>& inks, const std::set<std::uint32_t>& present,
                   const std::string& place, const char* what) {
    if (present.empty()) return;
    for (const std::uint32_t ink : inks) {
      if (!present.contains(ink)) Add(severity, place, fmt::format("the ink {} has no {}", ink, what));
    }
  }

  void FindInksWithoutCurves() {
    const std::set<std::uint32_t> linearized = InksOf({CProfileDataEntry::kLinearization});
    const std::set<std::uint32_t> inTable = InksOfTable();
    std::set<std::uint32_t> inks = linearized;
    inks.insert(inTable.begin(), inTable.end());
    FindMissing(Severity::kError, inTable, linearized, PlaceOf(CProfileDataEntry::kLinearization), "linearization");
    FindMissing(Severity::kWarning, inks, InksOf({CProfileDataEntry::kGrayBalance}),
                PlaceOf(CProfileDataEntry::kGrayBalance), "gray balance curve");
    FindMissing(
        Severity::kWarning, inks,
        InksOf({CProfileDataEntry::kInkLimit, CProfileDataEntry::kVariableInkLimit, CProfileDataEntry::kMultiInkLimit}),
        "ink limits", "ink limit");
  }

  // How much of each ink its limit lets through, as a part of the full amount.
  std::map<std::uint32_t, double> Limits() const {
    std::map<std::uint32_t, double> limits;
    const auto take = [&](CCurveDataEntry* curve) {
      const std::vector<std::uint32_t> samples = SamplesOf(*curve);
      limits.emplace(curve->GetInkID(),
                     *std::max_element(samples.begin(), samples.end()) / double{curve->GetMaxBitValue()});
    };
    for (CCurveDataEntry* const curve : CurvesOfType(CProfileDataEntry::kInkLimit)) take(curve);
    for (CCurveDataEntry* const curve : CurvesOfType(CProfileDataEntry::kMultiInkLimit)) {
      if (curve->GetExtendInfo() == kInkLimitKey) take(curve);
    }
    return limits;
  }

  void FindTableBeyondLimits() {
    CLutData* const table = Table();
    if (table == nullptr) return;
    const LutNodes nodes(*table);
    const std::map<std::uint32_t, double> limits = Limits();
    for (int output = 0; const CLutChannelInf* const channel = table->GetAtOutputChannelInf(output); ++output) {
      const auto limit = limits.find(channel->GetChannelCode());
      if (limit != limits.end()) CompareWithLimit(nodes, output, limit->first, limit->second);
    }
  }

  void CompareWithLimit(const LutNodes& nodes, int output, std::uint32_t ink, double limit) {
    std::size_t beyond = 0;
    std::size_t farthest = 0;
    std::uint8_t greatest = 0;
    for (std::size_t i = 0; i < nodes.Count(); ++i) {
      const std::uint8_t sample = nodes.SamplesOf(i)[static_cast<std::size_t>(output)];
      // Half a step of the table's samples is rounding.
      if (sample <= 255 * limit + 0.5) continue;
      ++beyond;
      if (sample <= greatest) continue;
      greatest = sample;
      farthest = i;
    }
    if (beyond == 0) return;
    Add(Severity::kError, fmt::format("{}/ink {}", PlaceOf(CProfileDataEntry::kSeparateChroma), ink),
        fmt::format("{} of {} nodes go beyond the ink limit of {:.1f} %, at {} to {:.1f} %", beyond, nodes.Count(),
                    100 * limit, nodes.InputText(farthest), 100.0 / 255 * greatest));
  }

  CProfileData& data_;
  std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> FindSemanticFaults(CProfileAccess& access) { return Search(access).Run(); }

}  // namespace nvx::tool
