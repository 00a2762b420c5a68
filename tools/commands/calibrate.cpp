// nvxprofile calibrate: appends a measured calibration to the history of a profile.
#include "calibration_edit.h"
#include "cgats.h"
#include "clock.h"
#include "command.h"
#include "curve_view.h"
#include "files.h"
#include "loading.h"
#include "measured_curves.h"
#include "terminal.h"

#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct CalibrateOptions {
  std::string file;
  std::string csv;
  std::string name;
  std::string output;
  std::int32_t value = 0;
  std::optional<std::int64_t> time;
};

// The inks that the profile has a linearization of; none for a profile without.
std::set<std::uint32_t> InksOf(CProfileData& data) {
  std::set<std::uint32_t> inks;
  auto* const entry =
      dynamic_cast<CProfileCurveEntry*>(data.GetProfileDataEntryFromList(CProfileDataEntry::kLinearization));
  if (entry == nullptr || !entry->BufferToData()) return inks;
  for (const CCurveDataEntry* const curve : CurvesOf(*entry->GetCurveData())) inks.insert(curve->GetInkID());
  return inks;
}

NewCalibration ReadCurves(const CalibrateOptions& options, CProfileData& data) {
  const std::string text = ReadInput(options.csv);
  try {
    return ReadMeasuredCurves(text, InksOf(data));
  } catch (const TextError& error) {
    throw std::runtime_error(fmt::format("{}: {}", options.csv, error.what()));
  }
}

int Run(const CalibrateOptions& options) {
  ChangedProfile profile(options.file);
  const std::string& target = options.output.empty() ? options.file : options.output;
  std::uint32_t code = 0;
  try {
    CCalibrationHistoryEntry& history = EditableHistory(profile);
    const std::u16string name = CalibrationName(options.name);
    NewCalibration calibration = ReadCurves(options, profile.Data());
    calibration.name = name;
    calibration.value = options.value;
    calibration.time = options.time.value_or(PresentTime());
    code = Append(history, std::move(calibration));
  } catch (const std::runtime_error& error) {
    PrintErrorOf(options.file, fmt::format("{}; nothing was changed", error.what()));
    return kFailure;
  }
  SaveHistory(profile, target);
  PrintDone(target, fmt::format("calibration {} \"{}\" appended", code, options.name));
  return kSuccess;
}

}  // namespace

void AddCalibrateCommand(CommandLine& line) {
  Command command = line.AddCommand("calibrate", "Append a measured calibration to a profile");
  const auto options = std::make_shared<CalibrateOptions>();
  command.Add("FILE", &options->file, "A profile of the current generation; it is changed in place unless -o is given")
      .Required();
  command.Add("--csv", &options->csv, "The measured curves, in the columns that curves --csv writes")
      .Required()
      .Type("CURVES");
  command.Add("--name", &options->name, "The name of the calibration, of 20 characters at most").Required();
  command.Add("--value", &options->value, "A number for the calibration tools").Type("N");
  command.Add("--time", &options->time, "When it was measured, in seconds since 1970; now by default").Type("SECONDS");
  command.Add("-o,--output", &options->output, "Write the changed profile here").Type("FILE");
  command.Example("nvxprofile calibrate glossy.icc --csv monday.csv --name Monday");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
