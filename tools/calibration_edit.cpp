#include "calibration_edit.h"

#include "calibration_view.h"
#include "loading.h"

#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <stdexcept>

namespace nvx::tool {
namespace {}  // namespace

CCalibrationHistoryEntry& EditableHistory(ChangedProfile& profile) {
  if (profile.Access().GetProfileLoadFormat() != kPrinterProfile) {
    throw std::runtime_error("only profiles of the current generation keep a calibration history");
  }
  CProfileData& data = profile.Data();
  if (CCalibrationHistoryEntry* const history = HistoryOf(data)) {
    if (history->GetSize() != 0 && !ParsesWhole(*history)) {
      throw std::runtime_error("the calibration history is damaged; validate tells where");
    }
    return *history;
  }
  auto* const history = new CCalibrationHistoryEntry;
  data.SetProfileDataEntry(history, kRouteCalibration);
  return *history;
}

CContainerEntry& CalibrationOf(CCalibrationHistoryEntry& history, std::uint32_t code) {
  auto* const calibration =
      dynamic_cast<CContainerEntry*>(history.GetProfileDataEntry(CProfileDataEntry::kCalibrationContainer, code));
  if (calibration == nullptr) throw std::runtime_error(fmt::format("no calibration has the code {}", code));
  return *calibration;
}

std::uint32_t Append(CCalibrationHistoryEntry& history, NewCalibration calibration) {
  CContainerEntry* const added = AddCalibration(history, std::move(calibration));
  if (added == nullptr) throw std::runtime_error("the calibration does not fit into the history");
  return added->GetOptionInfo();
}

std::u16string CalibrationName(const std::string& name) {
  std::u16string wide = Utf8ToWide(name);
  if (wide.empty()) throw std::runtime_error("a calibration needs a name");
  if (wide.size() > kLongestCalibrationName) {
    throw std::runtime_error(fmt::format("the name \"{}\" has {} characters, and a profile keeps {}", name, wide.size(),
                                         kLongestCalibrationName));
  }
  return wide;
}

void SaveHistory(ChangedProfile& profile, const std::string& path) {
  CCalibrationHistoryEntry& history = *HistoryOf(profile.Data());
  if (!history.DataToBuffer()) throw std::runtime_error("the calibrations cannot be kept in one profile");
  profile.Save(history.GetUsedType(), path);
}

}  // namespace nvx::tool
