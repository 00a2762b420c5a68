#include "timeline.h"

#include "calibration_view.h"
#include "curve_view.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace nvx::tool {
namespace {

InkChanges ChangesOf(CProfileCurveEntry& before, CProfileCurveEntry& after) {
  InkChanges changes;
  for (CCurveDataEntry* const curve : CurvesOf(*after.GetCurveData())) {
    CCurveDataEntry* const old = before.GetCurveData()->FindInkIDEntryonSize(curve->GetInkID(), curve->GetExtendInfo());
    if (old == nullptr) continue;
    const CurveDifference difference = GreatestDifference(*old, *curve);
    CurveDifference& greatest = changes.emplace(curve->GetInkID(), difference).first->second;
    if (std::abs(difference.percent) > std::abs(greatest.percent)) greatest = difference;
  }
  return changes;
}

void Compare(CContainerEntry& before, TimelineStep& step) {
  for (int i = 0; i < step.calibration->GetEntryCount(); ++i) {
    auto* const after = dynamic_cast<CProfileCurveEntry*>(step.calibration->GetProfileDataEntry(i));
    if (after == nullptr) continue;
    auto* const entry =
        dynamic_cast<CProfileCurveEntry*>(before.GetProfileDataEntry(after->GetUsedType(), after->GetOptionInfo()));
    if (entry != nullptr) step.changes[after->GetUsedType()] = ChangesOf(*entry, *after);
  }
}

std::set<std::uint32_t> InksOf(const std::vector<TimelineStep>& steps) {
  std::set<std::uint32_t> inks;
  for (const TimelineStep& step : steps) {
    for (const auto& [usedType, changes] : step.changes) {
      for (const auto& [ink, change] : changes) inks.insert(ink);
    }
  }
  return inks;
}

}  // namespace

std::vector<TimelineStep> TimelineOf(CCalibrationHistoryEntry& history) {
  std::vector<TimelineStep> steps;
  for (CContainerEntry* const calibration : CalibrationsOf(history)) steps.push_back({calibration, {}});
  std::stable_sort(steps.begin(), steps.end(), [](const TimelineStep& a, const TimelineStep& b) {
    return a.calibration->GetContainerData()->Time < b.calibration->GetContainerData()->Time;
  });
  for (std::size_t i = 1; i < steps.size(); ++i) Compare(*steps[i - 1].calibration, steps[i]);
  return steps;
}

void PrintTimeline(const std::vector<TimelineStep>& steps) {
  const std::set<std::uint32_t> inks = InksOf(steps);
  std::vector<Table::Column> columns{{"time"}, {"code", Table::Align::kRight}, {"name"}, {"greatest change of"}};
  for (const std::uint32_t ink : inks) columns.push_back({fmt::format("ink {}", ink), Table::Align::kRight});
  Table table(std::move(columns));
  for (const TimelineStep& step : steps) {
    const std::vector<std::string> start{TimeText(step.calibration->GetContainerData()->Time),
                                         std::to_string(step.calibration->GetOptionInfo()), NameOf(*step.calibration)};
    if (step.changes.empty()) table.Add(start);
    for (const auto& [usedType, changes] : step.changes) {
      const bool isFirst = usedType == step.changes.begin()->first;
      std::vector<std::string> cells = isFirst ? start : std::vector<std::string>(start.size());
      cells.emplace_back(EntryName(usedType));
      for (const std::uint32_t ink : inks) {
        const auto change = changes.find(ink);
        cells.push_back(change != changes.end() ? TextOf(change->second) : "-");
      }
      table.Add(std::move(cells));
    }
  }
  table.Print(2);
}

Json TimelineToJson(const std::vector<TimelineStep>& steps) {
  Json timeline = Json::array();
  for (const TimelineStep& step : steps) {
    Json changes = Json::array();
    for (const auto& [usedType, inks] : step.changes) {
      for (const auto& [ink, change] : inks) {
        changes.push_back({{"curves", std::string(EntryName(usedType))},
                           {"ink", ink},
                           {"percent", change.percent},
                           {"input", change.input}});
      }
    }
    timeline.push_back({{"code", step.calibration->GetOptionInfo()},
                        {"name", NameOf(*step.calibration)},
                        {"time", step.calibration->GetContainerData()->Time},
                        {"changes", std::move(changes)}});
  }
  return timeline;
}

}  // namespace nvx::tool
