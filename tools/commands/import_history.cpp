// nvxprofile import-history: takes the calibrations of one profile over into another, and never loses one.
#include "calibration_edit.h"
#include "calibration_view.h"
#include "command.h"
#include "loading.h"
#include "saving.h"
#include "terminal.h"

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/curve_entry.h>

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct ImportHistoryOptions {
  std::string from;
  std::string into;
  bool recode = false;
};

// The place of an entry whose bytes do not parse, and which a save would therefore not keep; empty if there is none.
std::string FindDamage(CContainerEntry& container) {
  for (int i = 0; i < container.GetEntryCount(); ++i) {
    CProfileDataEntry& child = *container.GetProfileDataEntry(i);
    auto* const inner = dynamic_cast<CContainerEntry*>(&child);
    const bool parses = inner != nullptr || dynamic_cast<CProfileCurveEntry*>(&child) != nullptr ||
                        dynamic_cast<CCalibrationInfoEntry*>(&child) != nullptr;
    std::string place = fmt::format("{} {}", EntryName(child.GetUsedType()), child.GetOptionInfo());
    if (parses && child.GetSize() != 0 && !child.BufferToData()) return place;
    const std::string below = inner != nullptr ? FindDamage(*inner) : std::string();
    if (!below.empty()) return place + ", " + below;
  }
  return {};
}

bool IsWhole(const std::string& file, CCalibrationHistoryEntry& history) {
  std::string damage = history.GetSize() != 0 && !history.BufferToData() ? "its table" : FindDamage(history);
  if (damage.empty()) return true;
  PrintError(fmt::format("{}: the calibration history is damaged ({}); nothing was imported", file, damage));
  return false;
}

void PrintCollisions(const ImportHistoryOptions& options, CCalibrationHistoryEntry& into,
                     CCalibrationHistoryEntry& from, const std::vector<std::uint32_t>& codes) {
  PrintError(
      fmt::format("{} of {} calibrations have codes that are taken; nothing was imported. --recode gives them "
                  "fresh codes.",
                  codes.size(), CalibrationsOf(from).size()));
  const auto nameIn = [](CCalibrationHistoryEntry& history, std::uint32_t code) {
    auto* const calibration =
        dynamic_cast<CContainerEntry*>(history.GetProfileDataEntry(CProfileDataEntry::kCalibrationContainer, code));
    return calibration != nullptr ? NameOf(*calibration) : std::string();
  };
  Table table({{"code", Table::Align::kRight}, {options.from}, {options.into}});
  for (const std::uint32_t code : codes) table.Add({std::to_string(code), nameIn(from, code), nameIn(into, code)});
  table.Print(2);
}

void PrintImported(const ImportHistoryOptions& options, CCalibrationHistoryEntry& into,
                   const std::vector<ImportedCalibration>& imported) {
  PrintLine(fmt::format("{}: {} calibrations taken over, {} in all", options.into, imported.size(),
                        CalibrationsOf(into).size()));
  for (const ImportedCalibration& calibration : imported) {
    if (calibration.code == calibration.sourceCode) continue;
    PrintLine(fmt::format("  code {} became {}", calibration.sourceCode, calibration.code));
  }
}

// Null, with the reason on standard error, for a profile that cannot keep one.
CCalibrationHistoryEntry* HistoryToChange(ChangedProfile& profile, const std::string& file) {
  try {
    return &EditableHistory(profile);
  } catch (const std::runtime_error& error) {
    PrintErrorOf(file, error.what());
    return nullptr;
  }
}

int Run(const ImportHistoryOptions& options) {
  CProfileAccess source;
  if (!LoadProfile(options.from, source)) return kFailure;
  ChangedProfile target(options.into);
  CCalibrationHistoryEntry* const from = HistoryOf(*source.GetProfileData());
  if (from == nullptr) {
    PrintError(options.from + ": the profile has no calibration history");
    return kFailure;
  }
  CCalibrationHistoryEntry* const history = HistoryToChange(target, options.into);
  if (history == nullptr) return kFailure;
  CCalibrationHistoryEntry& into = *history;
  if (!IsWhole(options.from, *from) || !IsWhole(options.into, into)) return kFailure;

  const std::vector<std::uint32_t> colliding = CollidingCodes(into, *from);
  if (!colliding.empty() && !options.recode) {
    PrintCollisions(options, into, *from, colliding);
    return kFailure;
  }
  const std::optional<std::vector<ImportedCalibration>> imported = ImportCalibrations(into, *from);
  if (!imported || !into.DataToBuffer()) {
    PrintError(options.into + ": the calibrations cannot be kept in one profile; it is as it was");
    return kFailure;
  }
  target.Save(into.GetUsedType(), options.into);
  if (options.into != kStandardStream) PrintImported(options, into, *imported);
  return kSuccess;
}

}  // namespace

void AddImportHistoryCommand(CommandLine& line) {
  Command command = line.AddCommand("import-history", "Take the calibrations of one profile over into another");
  const auto options = std::make_shared<ImportHistoryOptions>();
  command.Add("FROM", &options->from, "The profile whose calibrations are wanted; it is only read").Required();
  command.Add("INTO", &options->into, "The profile that gets them, of the current generation").Required();
  command.AddFlag("--recode", options->recode, "Give calibrations whose codes are taken in INTO fresh codes");
  command.Example("nvxprofile import-history old.icc new.icc --recode");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
