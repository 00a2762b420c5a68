// What the calibration history answers.
#include "core/payload.h"
#include "core/report.h"
#include "core/text.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>

namespace {

constexpr const char* kSource = "ProfileAccess";
constexpr std::size_t kNameLength = 21;

std::int32_t CodeOf(CProfileDataEntry& calibration) { return static_cast<std::int32_t>(calibration.GetOptionInfo()); }

using Children = nvx::CursorList<CProfileDataEntry>;

const CCalibrationHistoryEntry* HistoryOf(const CProfileData* profile) {
  if (profile == nullptr) return nullptr;
  return dynamic_cast<const CCalibrationHistoryEntry*>(
      profile->GetProfileDataEntryFromList(CProfileDataEntry::kCalibrationHistory));
}

const Children* ChildrenOf(const CProfileData* profile) {
  const CCalibrationHistoryEntry* const history = HistoryOf(profile);
  return history != nullptr ? &history->GetChildData().Children() : nullptr;
}

// The children of a history that holds calibrations: the first child is the target entry.
const Children* CalibrationsOf(const CProfileData* profile) {
  const Children* const children = ChildrenOf(profile);
  return children != nullptr && children->Count() >= 2 ? children : nullptr;
}

// The calibration at a position of the history, its children as its buffer has them; null for a child of another class.
const CContainerEntry* CalibrationAt(const Children& children, std::size_t position) {
  CProfileDataEntry* const entry = children.At(position);
  CContainerEntry* const calibration = entry != nullptr ? entry->AsContainer() : nullptr;
  if (calibration != nullptr && nvx::PayloadKeeper::IsStale(*calibration)) calibration->BufferToData();
  return calibration;
}

template <class Visit>
void ForEachCalibration(const Children& children, Visit visit) {
  for (std::size_t position = 1; position < children.Count(); ++position) {
    if (const CContainerEntry* const calibration = CalibrationAt(children, position)) {
      visit(*calibration->GetChildData().GetContainerData(), CodeOf(*children.At(position)));
    }
  }
}

CProfileDataEntry* CalibrationCurves(const CProfileData* profile, std::uint32_t code, std::uint32_t usedType) {
  const CCalibrationHistoryEntry* const history = HistoryOf(profile);
  if (history == nullptr) return nullptr;
  CProfileDataEntry* const entry = history->GetChildData().Find(CProfileDataEntry::kCalibrationContainer, code);
  const CContainerEntry* const calibration = entry != nullptr ? entry->AsContainer() : nullptr;
  return calibration != nullptr ? calibration->GetChildData().Find(usedType, 0) : nullptr;
}

}  // namespace

bool CProfileAccess::GetCalibrationCount(std::int32_t& count, CError*) {
  count = 0;
  const Children* const children = ChildrenOf(profile_.get());
  if (children == nullptr || children->IsEmpty()) return false;
  count = static_cast<std::int32_t>(children->Count()) - 1;
  return true;
}

bool CProfileAccess::GetCalibrationInfo(int index, int& code, int& value, std::int64_t& time, char16_t* name, CError*) {
  const Children* const children = CalibrationsOf(profile_.get());
  if (children == nullptr || index < 0) return false;
  const std::size_t position = static_cast<std::size_t>(index) + 1;
  const CContainerEntry* const calibration = CalibrationAt(*children, position);
  if (calibration == nullptr) return false;
  const tag_ContainerData& description = *calibration->GetChildData().GetContainerData();
  code = CodeOf(*children->At(position));
  value = description.Value;
  time = description.Time;
  const std::u16string_view text = nvx::FieldText(description.Name).substr(0, kNameLength);
  std::fill(std::copy(text.begin(), text.end(), name), name + kNameLength, u'\0');
  return true;
}

bool CProfileAccess::GetMultiCalibrationCode(std::int32_t* codes, CError*) {
  const Children* const children = CalibrationsOf(profile_.get());
  if (children == nullptr) return false;
  ForEachCalibration(*children, [&](const tag_ContainerData&, std::int32_t code) { *codes++ = code; });
  return true;
}

bool CProfileAccess::GetNewestCalibrationCode(std::int32_t& code, CError*) {
  if (!profile_) return false;
  code = -1;
  const Children* const children = CalibrationsOf(profile_.get());
  if (children == nullptr) return false;
  std::int64_t newest = 0;
  ForEachCalibration(*children, [&](const tag_ContainerData& description, std::int32_t candidate) {
    if (description.Time <= newest) return;
    newest = description.Time;
    code = candidate;
  });
  return true;
}

void* CProfileAccess::GetCalibrationCurve(std::uint32_t usedType, std::uint32_t inkColorCode, std::uint32_t extendInfo,
                                          int code, int& size, int& dataType, CError* error) {
  if (!profile_ || code < 0) return nullptr;
  CProfileDataEntry* const curves = CalibrationCurves(profile_.get(), static_cast<std::uint32_t>(code), usedType);
  if (curves == nullptr) {
    nvx::Fail(error, nvx::kReasonNotFound, kSource, u"Profile:Calibration history entry - none");
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
