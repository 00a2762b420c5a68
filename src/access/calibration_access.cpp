// What the calibration history answers.
#include "core/report.h"
#include "core/text.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>

namespace {

constexpr const char* kSource = "ProfileAccess";
constexpr std::size_t kNameLength = 21;

CCalibrationHistoryEntry* HistoryOf(CProfileData* profile) {
  if (profile == nullptr) return nullptr;
  return dynamic_cast<CCalibrationHistoryEntry*>(
      profile->GetProfileDataEntryFromList(CProfileDataEntry::kCalibrationHistory));
}

// The history if it holds calibrations: the first child is the target entry.
CCalibrationHistoryEntry* HistoryWithCalibrations(CProfileData* profile) {
  CCalibrationHistoryEntry* const history = HistoryOf(profile);
  return history != nullptr && history->GetEntryCount() >= 2 ? history : nullptr;
}

// The calibration at a position of the history, its children renewed; null for a child of another class.
CContainerEntry* CalibrationAt(CCalibrationHistoryEntry& history, int position) {
  auto* const calibration = dynamic_cast<CContainerEntry*>(history.GetProfileDataEntry(position));
  if (calibration != nullptr) calibration->BufferToData();
  return calibration;
}

template <class Visit>
void ForEachCalibration(CCalibrationHistoryEntry& history, Visit visit) {
  for (int position = 1; position < history.GetEntryCount(); ++position) {
    if (CContainerEntry* const calibration = CalibrationAt(history, position)) visit(*calibration);
  }
}

CProfileDataEntry* CalibrationCurves(CProfileData* profile, std::uint32_t code, std::uint32_t usedType) {
  CCalibrationHistoryEntry* const history = HistoryOf(profile);
  if (history == nullptr) return nullptr;
  auto* const calibration =
      dynamic_cast<CContainerEntry*>(history->GetProfileDataEntry(CProfileDataEntry::kCalibrationContainer, code));
  return calibration != nullptr ? calibration->GetProfileDataEntry(usedType, 0) : nullptr;
}

}  // namespace

bool CProfileAccess::GetCalibrationCount(std::int32_t& count, CError*) {
  count = 0;
  CCalibrationHistoryEntry* const history = HistoryOf(profile_.get());
  if (history == nullptr || history->GetEntryCount() == 0) return false;
  count = history->GetEntryCount() - 1;
  return true;
}

bool CProfileAccess::GetCalibrationInfo(int index, int& code, int& value, std::int64_t& time, char16_t* name, CError*) {
  CCalibrationHistoryEntry* const history = HistoryWithCalibrations(profile_.get());
  if (history == nullptr || index < 0 || index >= history->GetEntryCount()) return false;
  CContainerEntry* const calibration = CalibrationAt(*history, index + 1);
  if (calibration == nullptr) return false;
  const tag_ContainerData& description = *calibration->GetContainerData();
  code = static_cast<int>(calibration->GetOptionInfo());
  value = description.Value;
  time = description.Time;
  const std::u16string_view text = nvx::FieldText(description.Name).substr(0, kNameLength);
  std::fill(std::copy(text.begin(), text.end(), name), name + kNameLength, u'\0');
  return true;
}

bool CProfileAccess::GetMultiCalibrationCode(std::int32_t* codes, CError*) {
  CCalibrationHistoryEntry* const history = HistoryWithCalibrations(profile_.get());
  if (history == nullptr) return false;
  ForEachCalibration(*history, [&](CContainerEntry& calibration) {
    *codes++ = static_cast<std::int32_t>(calibration.GetOptionInfo());
  });
  return true;
}

bool CProfileAccess::GetNewestCalibrationCode(std::int32_t& code, CError*) {
  if (!profile_) return false;
  code = -1;
  CCalibrationHistoryEntry* const history = HistoryWithCalibrations(profile_.get());
  if (history == nullptr) return false;
  std::int64_t newest = 0;
  ForEachCalibration(*history, [&](CContainerEntry& calibration) {
    const std::int64_t time = calibration.GetContainerData()->Time;
    if (time <= newest) return;
    newest = time;
    code = static_cast<std::int32_t>(calibration.GetOptionInfo());
  });
  return true;
}

void* CProfileAccess::GetCalibrationCurve(std::uint32_t usedType, std::uint32_t inkColorCode, std::uint32_t extendInfo,
                                          int code, int& size, int& dataType, CError* error) {
  if (!profile_ || code < 0) return nullptr;
  CProfileDataEntry* const curves = CalibrationCurves(profile_.get(), static_cast<std::uint32_t>(code), usedType);
  if (curves == nullptr) {
    nvx::Fail(error, nvx::kReasonNotFound, kSource, __LINE__, u"Profile:Calibration history entry - none");
    return nullptr;
  }
  return GetCurveDataBuffer(curves, inkColorCode, extendInfo, size, dataType, error);
}

void* CProfileAccess::GetCalibrationInkLimit(std::uint32_t inkColorCode, int code, int& size, int& dataType,
                                             CError* error) {
  return GetCalibrationCurve(CProfileDataEntry::kCalibrationInklimit, inkColorCode, 12, code, size, dataType, error);
}

void* CProfileAccess::GetCalibrationLinearization(std::uint32_t inkColorCode, int code, int& size, int& dataType,
                                                  CError* error) {
  return GetCalibrationCurve(CProfileDataEntry::kCalibrationLinearization, inkColorCode, 0, code, size, dataType,
                             error);
}

void* CProfileAccess::GetCalibrationGrayBalance(std::uint32_t inkColorCode, int code, int& size, int& dataType,
                                                CError* error) {
  return GetCalibrationCurve(CProfileDataEntry::kCalibrationGrayBalance, inkColorCode, 0, code, size, dataType, error);
}
