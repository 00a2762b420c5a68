#include "calibration_view.h"

#include <nvxprofile/text_conversion.h>

#include <ctime>
#include <string_view>

namespace nvx::tool {

CCalibrationHistoryEntry* HistoryOf(CProfileData& data) {
  return dynamic_cast<CCalibrationHistoryEntry*>(
      data.GetProfileDataEntryFromList(CProfileDataEntry::kCalibrationHistory));
}

std::vector<CContainerEntry*> CalibrationsOf(CCalibrationHistoryEntry& history) {
  std::vector<CContainerEntry*> calibrations;
  for (int i = 0; i < history.GetEntryCount(); ++i) {
    if (auto* const calibration = dynamic_cast<CCalibrationContainerEntry*>(history.GetProfileDataEntry(i))) {
      calibrations.push_back(calibration);
    }
  }
  return calibrations;
}

std::string NameOf(CContainerEntry& calibration) { return WideToUtf8(calibration.GetContainerData()->Name); }

std::string TimeText(std::int64_t seconds) {
  if (seconds == 0) return "-";
  const auto time = static_cast<std::time_t>(seconds);
  const std::tm* const parts = std::localtime(&time);
  char text[64];
  if (parts == nullptr || parts->tm_year > 9999 - 1900) return std::to_string(seconds);
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", parts));
}

}  // namespace nvx::tool
