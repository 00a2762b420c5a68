// nvxprofile remove-calibration and rename-calibration: changes of what a profile keeps of its calibrations.
#include "calibration_edit.h"
#include "calibration_view.h"
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct EditHistoryOptions {
  std::string file;
  std::uint32_t code = 0;            // to rename
  std::vector<std::uint32_t> codes;  // to remove
  std::string name;
};

// Runs change(history), which may throw, and saves.
template <class Change>
int EditHistory(const std::string& file, Change change) {
  ChangedProfile profile(file);
  std::string done;
  try {
    done = change(EditableHistory(profile));
  } catch (const std::runtime_error& error) {
    PrintErrorOf(file, fmt::format("{}; nothing was changed", error.what()));
    return kFailure;
  }
  SaveHistory(profile, file);
  PrintDone(file, done);
  return kSuccess;
}

std::string Remove(CCalibrationHistoryEntry& history, const std::vector<std::uint32_t>& codes) {
  std::string names;
  for (const std::uint32_t code : codes) {
    names += fmt::format("{}{} \"{}\"", names.empty() ? "" : ", ", code, NameOf(CalibrationOf(history, code)));
    const std::unique_ptr<CProfileDataEntry> removed(
        history.RemoveProfileDataEntry(CProfileDataEntry::kCalibrationContainer, code));
  }
  return fmt::format("calibration {} removed, {} left", names, CalibrationsOf(history).size());
}

std::string Rename(CCalibrationHistoryEntry& history, std::uint32_t code, const std::string& name) {
  CContainerEntry& calibration = CalibrationOf(history, code);
  const std::string before = NameOf(calibration);
  const std::u16string wide = CalibrationName(name);
  tag_ContainerData description = *calibration.GetContainerData();
  std::fill(std::begin(description.Name), std::end(description.Name), u'\0');
  wide.copy(description.Name, wide.size());
  calibration.SetContainerData(&description);
  return fmt::format(R"(calibration {} "{}" is now "{}")", code, before, name);
}

}  // namespace

void AddRemoveCalibrationCommand(CommandLine& line) {
  Command command = line.AddCommand("remove-calibration", "Take calibrations out of the history of a profile");
  const auto options = std::make_shared<EditHistoryOptions>();
  command.Add("FILE", &options->file, "A profile of the current generation; it is changed in place").Required();
  command.Add("CODE", &options->codes, "Codes of the calibrations, as history lists them").Required();
  command.Example("nvxprofile remove-calibration glossy.icc 3");
  command.Action(
      [options] { return EditHistory(options->file, [&](auto& history) { return Remove(history, options->codes); }); });
}

void AddRenameCalibrationCommand(CommandLine& line) {
  Command command = line.AddCommand("rename-calibration", "Give a calibration of a profile another name");
  const auto options = std::make_shared<EditHistoryOptions>();
  command.Add("FILE", &options->file, "A profile of the current generation; it is changed in place").Required();
  command.Add("CODE", &options->code, "The code of the calibration, as history lists it").Required();
  command.Add("NAME", &options->name, "Its new name, of 20 characters at most").Required();
  command.Example("nvxprofile rename-calibration glossy.icc 3 \"after head change\"");
  command.Action([options] {
    return EditHistory(options->file, [&](auto& history) { return Rename(history, options->code, options->name); });
  });
}

}  // namespace nvx::tool
