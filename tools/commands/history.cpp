// nvxprofile history: the calibrations that a profile keeps, and the curves of one of them.
#include "cal_curves.h"
#include "calibration_edit.h"
#include "calibration_view.h"
#include "command.h"
#include "curve_view.h"
#include "loading.h"
#include "saving.h"
#include "terminal.h"
#include "timeline.h"

#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct HistoryOptions {
  std::string file;
  std::optional<std::uint32_t> curves;
  std::string cal;
  std::vector<std::string> inks;
  bool timeline = false;
  PlotStyle plot = PlotStyle::kNone;
  bool json = false;
};

std::vector<CProfileCurveEntry*> CurveEntriesOf(CContainerEntry& calibration) {
  std::vector<CProfileCurveEntry*> entries;
  for (int i = 0; i < calibration.GetEntryCount(); ++i) {
    auto* const entry = dynamic_cast<CProfileCurveEntry*>(calibration.GetProfileDataEntry(i));
    if (entry != nullptr) entries.push_back(entry);
  }
  return entries;
}

std::set<std::uint32_t> InksOf(CContainerEntry& calibration) {
  std::set<std::uint32_t> inks;
  for (CProfileCurveEntry* const entry : CurveEntriesOf(calibration)) {
    for (CCurveDataEntry* const curve : CurvesOf(*entry->GetCurveData())) inks.insert(curve->GetInkID());
  }
  return inks;
}

std::vector<std::string> EntryNamesOf(CContainerEntry& calibration) {
  std::vector<std::string> names;
  for (int i = 0; i < calibration.GetEntryCount(); ++i) {
    const std::uint32_t usedType = calibration.GetProfileDataEntry(i)->GetUsedType();
    names.emplace_back(EntryName(usedType));
  }
  return names;
}

std::optional<std::int64_t> TargetTime(CCalibrationHistoryEntry& history) {
  auto* const target =
      dynamic_cast<CCalibrationTargetEntry*>(history.GetProfileDataEntry(CProfileDataEntry::kCalibrationTarget, 0));
  return target != nullptr ? std::optional(target->GetCreateTime()) : std::nullopt;
}

// The code that a print job takes; -1 for none.
std::int32_t Newest(CProfileAccess& access) {
  CError error;
  std::int32_t code = -1;
  access.GetNewestCalibrationCode(code, &error);
  return code;
}

Json ToJson(const HistoryOptions& options, CProfileAccess& access, CCalibrationHistoryEntry& history) {
  const std::int32_t newest = Newest(access);
  Json calibrations = Json::array();
  for (CContainerEntry* const calibration : CalibrationsOf(history)) {
    const tag_ContainerData& description = *calibration->GetContainerData();
    Json json = {{"code", calibration->GetOptionInfo()},
                 {"name", NameOf(*calibration)},
                 {"value", description.Value},
                 {"time", description.Time},
                 {"entries", EntryNamesOf(*calibration)},
                 {"inks", InksOf(*calibration)}};
    if (options.curves == calibration->GetOptionInfo()) {
      Json entries = Json::array();
      for (CProfileCurveEntry* const entry : CurveEntriesOf(*calibration)) {
        Json payload = PayloadToJson(*entry);
        entries.push_back({{"usedType", entry->GetUsedType()},
                           {"name", std::string(EntryName(entry->GetUsedType()))},
                           {"curves", payload.is_object() ? payload["curves"] : Json::array()}});
      }
      json["curves"] = std::move(entries);
    }
    calibrations.push_back(std::move(json));
  }
  Json json = {{"file", options.file}, {"nextID", history.PeekNextID()}};
  const std::optional<std::int64_t> target = TargetTime(history);
  json["targetCreateTime"] = target ? Json(*target) : Json(nullptr);
  json["newest"] = newest >= 0 ? Json(newest) : Json(nullptr);
  json["calibrations"] = std::move(calibrations);
  if (options.timeline) json["timeline"] = TimelineToJson(TimelineOf(history));
  return json;
}

void PrintTable(CProfileAccess& access, CCalibrationHistoryEntry& history) {
  using enum Table::Align;
  const std::int32_t newest = Newest(access);
  if (const std::optional<std::int64_t> target = TargetTime(history)) {
    PrintLine(fmt::format("  target made {}", TimeText(*target)));
  }
  Table table({{"code", kRight}, {"name"}, {"value", kRight}, {"time"}, {"curves", kRight}, {"inks"}, {""}});
  for (CContainerEntry* const calibration : CalibrationsOf(history)) {
    const tag_ContainerData& description = *calibration->GetContainerData();
    const bool isNewest = newest >= 0 && calibration->GetOptionInfo() == static_cast<std::uint32_t>(newest);
    table.Add({std::to_string(calibration->GetOptionInfo()), NameOf(*calibration), std::to_string(description.Value),
               TimeText(description.Time), std::to_string(CurveEntriesOf(*calibration).size()),
               fmt::format("{}", fmt::join(InksOf(*calibration), " ")), isNewest ? "newest" : ""});
  }
  if (table.IsEmpty()) {
    PrintLine("  no calibrations");
  } else {
    table.Print(2);
  }
}

void PrintCurvesOf(CContainerEntry& calibration, PlotStyle plot) {
  for (CProfileCurveEntry* const entry : CurveEntriesOf(calibration)) {
    PrintLine();
    PrintCurves(entry->GetUsedType(), CurvesOf(*entry->GetCurveData()), plot);
  }
}

// The curves of one calibration as a calibration file.
int WriteCalFile(const HistoryOptions& options, CCalibrationHistoryEntry& history) {
  try {
    CContainerEntry& calibration = CalibrationOf(history, *options.curves);
    CalFile cal = CalibrationToCal(calibration, InkTable(options.inks));
    cal.description = NameOf(calibration);
    WriteText(options.cal, WriteCal(cal));
    return kSuccess;
  } catch (const std::runtime_error& error) {
    PrintErrorOf(options.file, error.what());
    return kFailure;
  }
}

int Run(const HistoryOptions& options) {
  CProfileAccess access;
  if (!LoadProfile(options.file, access)) return kFailure;
  CCalibrationHistoryEntry* const history = HistoryOf(*access.GetProfileData());
  if (history == nullptr) {
    PrintError(options.file + ": the profile has no calibration history");
    return kFailure;
  }
  if (!options.cal.empty()) return WriteCalFile(options, *history);
  if (options.json) {
    PrintJson(ToJson(options, access, *history));
  } else {
    PrintLine(Styled(Style::kHeading, options.file));
    if (options.timeline) {
      PrintTimeline(TimelineOf(*history));
    } else {
      PrintTable(access, *history);
    }
  }
  if (!options.curves) return kSuccess;
  try {
    CContainerEntry& calibration = CalibrationOf(*history, *options.curves);
    if (!options.json) PrintCurvesOf(calibration, options.plot);
    return kSuccess;
  } catch (const std::runtime_error& error) {
    PrintErrorOf(options.file, error.what());
    return kFailure;
  }
}

}  // namespace

void AddHistoryCommand(CommandLine& line) {
  Command command = line.AddCommand("history", "List the calibrations that a profile keeps");
  const auto options = std::make_shared<HistoryOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  const Option curves =
      command.Add("--curves", &options->curves, "Show the curves of the calibration with this code").Type("CODE");
  command.AddFlag("--timeline", options->timeline,
                  "List them by time, with the greatest change of each ink since the one before");
  const Option json = command.AddFlag("--json", options->json, "Write a JSON document");
  const Option cal = command.Add("--cal", &options->cal, "Write those curves as a calibration file (CGATS text)")
                         .Type("OUT")
                         .Needs(curves)
                         .Excludes(json);
  command.Add("--inks", &options->inks, kInksHelp).Separated().Type("N=LETTER...").Needs(cal);
  AddPlotOptions(command, options->plot);
  command.Example("nvxprofile history glossy.icc --timeline");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
