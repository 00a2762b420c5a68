// nvxprofile apply-cal: takes the curves of a calibration file over into a profile.
#include "cal_curves.h"
#include "calibration_edit.h"
#include "cgats.h"
#include "clock.h"
#include "command.h"
#include "curve_view.h"
#include "files.h"
#include "loading.h"
#include "saving.h"
#include "terminal.h"

#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct ApplyCalOptions {
  std::string file;
  std::string cal;
  std::string entry;
  std::string calibration;
  std::string output;
  std::vector<std::string> inks;
  std::optional<std::uint32_t> extendInfo;
  bool partial = false;
};

CProfileCurveEntry& CurveEntry(CProfileData& data, std::uint32_t usedType) {
  auto* const entry = dynamic_cast<CProfileCurveEntry*>(data.GetProfileDataEntryFromList(usedType));
  if (entry == nullptr) {
    throw std::runtime_error(
        fmt::format("the profile has no {} curves to take inks and sample counts from", EntryName(usedType)));
  }
  if (!ParsesWhole(*entry)) {
    throw std::runtime_error(fmt::format("the {} curves are damaged; validate tells where", EntryName(usedType)));
  }
  return *entry;
}

std::vector<CCurveDataEntry*> WantedCurves(CProfileCurveEntry& entry, const ApplyCalOptions& options) {
  std::vector<CCurveDataEntry*> curves = CurvesOf(*entry.GetCurveData());
  std::erase_if(curves, [&](const CCurveDataEntry* curve) {
    return options.extendInfo && curve->GetExtendInfo() != *options.extendInfo;
  });
  if (curves.empty()) throw std::runtime_error("the profile has no such curve");
  return curves;
}

// The curves of an entry get the outputs of the file, cut at the limits, as the entry has no other place for those.
std::string ReplaceCurves(CProfileData& data, const CalFile& cal, const ApplyCalOptions& options) {
  const InkTable inks(options.inks);
  CProfileCurveEntry& entry = CurveEntry(data, UsedTypeByName(options.entry));
  const std::vector<CCurveDataEntry*> curves =
      CurvesInCal(cal, inks, WantedCurves(entry, options), options.partial ? Fit::kPartial : Fit::kWhole);
  TakeOutputs(cal, inks, curves);
  CutAtLimits(cal, inks, curves);
  if (!entry.DataToBuffer()) throw std::runtime_error("the curves cannot be written as one entry");
  return fmt::format("{} curves of {} replaced", curves.size(), EntryName(entry.GetUsedType()));
}

// Inks, names and sample counts are those of the profile's linearization.
std::string AppendCalibration(ChangedProfile& profile, const CalFile& cal, const ApplyCalOptions& options) {
  const InkTable inks(options.inks);
  const std::u16string name = CalibrationName(options.calibration);
  CCalibrationHistoryEntry& history = EditableHistory(profile);
  CProfileCurveEntry& model = CurveEntry(profile.Data(), CProfileDataEntry::kLinearization);
  auto linearization = std::make_unique<CCalibrationLinearizationEntry>();
  CCurveData& set = *linearization->GetCurveData();
  set.SetUsedType(linearization->GetUsedType());
  for (CCurveDataEntry* const curve :
       CurvesInCal(cal, inks, WantedCurves(model, options), options.partial ? Fit::kPartial : Fit::kWhole)) {
    auto copy = std::make_unique<CCurveDataEntry16>();
    curve->Copy(*copy);
    set.AddTail(copy.release());
  }
  const std::vector<CCurveDataEntry*> curves = CurvesOf(set);
  TakeOutputs(cal, inks, curves);

  NewCalibration calibration;
  calibration.name = name;
  calibration.time = PresentTime();
  calibration.inkLimit = InkLimitOf(cal, inks, curves);
  const char* const limits = calibration.inkLimit ? " and ink limits" : "";
  calibration.linearization = std::move(linearization);
  const std::uint32_t code = Append(history, std::move(calibration));
  return fmt::format("calibration {} \"{}\" appended, with {} curves{}", code, options.calibration, curves.size(),
                     limits);
}

// What is suspicious in a file that can be taken all the same.
void WarnOfFallingCurves(const CalFile& cal, const std::string& path) {
  for (const CalCurve& curve : cal.curves) {
    const auto fall = std::adjacent_find(curve.outputs.begin(), curve.outputs.end(), std::greater<>());
    if (fall == curve.outputs.end()) continue;
    const auto index = static_cast<std::size_t>(fall - curve.outputs.begin());
    PrintError(fmt::format("{}: warning: the curve of {} falls behind the input {:.3g}", path, curve.colorant,
                           cal.inputs[index]));
  }
}

CalFile ReadFile(const std::string& path) {
  const std::string text = ReadInput(path);
  try {
    return ReadCal(text);
  } catch (const TextError& error) {
    throw std::runtime_error(path + ": " + error.what());
  }
}

int Run(const ApplyCalOptions& options) {
  if (!options.entry.empty() && UsedTypeByName(options.entry) == 0) {
    PrintError(fmt::format("\"{}\" is no kind of entry", options.entry));
    return kUsage;
  }
  const CalFile cal = ReadFile(options.cal);
  ChangedProfile profile(options.file);
  const std::string& target = options.output.empty() ? options.file : options.output;
  std::string done;
  try {
    done =
        options.entry.empty() ? AppendCalibration(profile, cal, options) : ReplaceCurves(profile.Data(), cal, options);
  } catch (const std::runtime_error& error) {
    PrintErrorOf(options.file, fmt::format("{}: {}; nothing was changed", options.cal, error.what()));
    return kFailure;
  }
  WarnOfFallingCurves(cal, options.cal);
  if (options.entry.empty()) {
    SaveHistory(profile, target);
  } else {
    profile.Save(UsedTypeByName(options.entry), target);
  }
  PrintDone(target, done);
  return kSuccess;
}

}  // namespace

void AddApplyCalCommand(CommandLine& line) {
  Command command = line.AddCommand("apply-cal", "Take the curves of a calibration file (.cal) over");
  const auto options = std::make_shared<ApplyCalOptions>();
  command.Add("FILE", &options->file, "A profile; it is changed in place unless -o is given").Required();
  command.Add("CAL", &options->cal, "CGATS text of an output device, with a curve for each ink").Required();
  Command target = command.AddGroup("Target", 1, 1);
  target.Add("--entry", &options->entry, "Replace the curves of this entry, cut at the file's ink limits").Type("NAME");
  target
      .Add("--new-calibration", &options->calibration,
           "Append a calibration of this name, with the file's curves as linearization and its ink limits")
      .Type("NAME");
  command.Add("--inks", &options->inks, kInksHelp).Separated().Type("N=LETTER...");
  command.Add("--extend", &options->extendInfo, "The curves of one ExtendInfo alone").Type("N");
  command.AddFlag("--partial", options->partial, "Take what profile and file both have, and leave other inks alone");
  command.Add("-o,--output", &options->output, "Write the changed profile here").Type("FILE");
  command.Example("nvxprofile apply-cal glossy.icc monday.cal --new-calibration Monday");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
