#include "core/byte_order.h"
#include "core/text.h"

#include <nvxprofile/calibration_history.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

namespace nvx {
namespace {

using Codes = std::set<std::uint32_t>;

std::vector<std::uint8_t> BufferOf(CProfileDataEntry& entry) {
  const std::uint8_t* const bytes = entry.GetRefBuffer();
  return bytes != nullptr ? std::vector<std::uint8_t>(bytes, bytes + entry.GetSize()) : std::vector<std::uint8_t>();
}

void SetBuffer(CProfileDataEntry& entry, const std::vector<std::uint8_t>& bytes) {
  std::uint8_t* const buffer = entry.GetBuffer(static_cast<std::uint32_t>(bytes.size()));
  if (buffer != nullptr) std::memcpy(buffer, bytes.data(), bytes.size());
}

// Leaves both buffers as the source's was.
void CopyPayloadAndBuffer(CProfileDataEntry& source, CProfileDataEntry& copy) {
  const std::vector<std::uint8_t> buffer = BufferOf(source);
  auto* const curves = dynamic_cast<CProfileCurveEntry*>(&source);
  auto* const curvesCopy = dynamic_cast<CProfileCurveEntry*>(&copy);
  if (curves != nullptr && curvesCopy != nullptr) {
    curves->GetCurveData()->Copy(*curvesCopy->GetCurveData());
    SetBuffer(copy, buffer);
  } else if (source.DataToBuffer()) {
    SetBuffer(copy, BufferOf(source));
    copy.BufferToData();
    SetBuffer(source, buffer);
    SetBuffer(copy, buffer);
  } else {
    SetBuffer(copy, buffer);
    copy.BufferToData();
  }
}

// False if a child cannot be copied.
bool CopyContainer(CContainerEntry& source, CContainerEntry& copy) {
  SetBuffer(copy, BufferOf(source));
  copy.SetContainerData(source.GetContainerData());
  copy.GetChildData().SetLevel(source.GetChildData().GetLevel());
  for (CProfileDataEntry* const child : source.GetChildData().Children()) {
    std::unique_ptr<CProfileDataEntry> childCopy = CloneEntry(*child);
    if (!childCopy) return false;
    copy.GetChildData().Insert(copy.GetChildData().Children().Count(), childCopy.release());
  }
  auto* const sourceHistory = dynamic_cast<CCalibrationHistoryEntry*>(&source);
  auto* const copyHistory = dynamic_cast<CCalibrationHistoryEntry*>(&copy);
  if (sourceHistory != nullptr && copyHistory != nullptr) copyHistory->SetNextID(sourceHistory->PeekNextID());
  return true;
}

bool IsCalibration(const CProfileDataEntry& entry) {
  return entry.GetUsedType() == CProfileDataEntry::kCalibrationContainer;
}

bool IsTarget(CProfileDataEntry& entry) {
  return entry.GetUsedType() == CProfileDataEntry::kCalibrationTarget && entry.GetOptionInfo() == 0;
}

Codes CodesOf(const CCalibrationHistoryEntry& history) {
  Codes codes;
  for (CProfileDataEntry* const child : history.GetChildData().Children()) {
    if (IsCalibration(*child)) codes.insert(child->GetOptionInfo());
  }
  return codes;
}

// The next code that is in neither set.
std::uint32_t FreshCode(CCalibrationHistoryEntry& history, const Codes& taken, const Codes& wanted) {
  std::uint32_t code = history.GetNextID();
  while (taken.contains(code) || wanted.contains(code)) code = history.GetNextID();
  return code;
}

// The target entry of the history, made in front of the calibrations if there is none.
CProfileDataEntry& TargetOf(CCalibrationHistoryEntry& history, std::int64_t createTime) {
  CProfileDataEntry* target = history.GetProfileDataEntry(CProfileDataEntry::kCalibrationTarget, 0);
  if (target != nullptr) return *target;
  target = new CCalibrationTargetEntry;
  history.InsertProfileDataEntry(0, target);
  StoreLittle(target->GetBuffer(sizeof createTime), static_cast<std::uint64_t>(createTime));
  target->BufferToData();
  return *target;
}

void AddCurves(CCalibrationContainerEntry& calibration, std::unique_ptr<CProfileCurveEntry> curves) {
  if (!curves) return;
  curves->SetOptionInfo(0);
  curves->SetComplete(true);
  calibration.InsertProfileDataEntry(calibration.GetEntryCount(), curves.release());
}

void RaiseNextId(CCalibrationHistoryEntry& history, const Codes& taken) {
  if (!taken.empty() && *taken.rbegin() >= history.PeekNextID()) history.SetNextID(*taken.rbegin() + 1);
}

}  // namespace

std::unique_ptr<CProfileDataEntry> CloneEntry(CProfileDataEntry& entry) {
  const auto usedType = static_cast<CProfileDataEntry::UsedType>(entry.GetUsedType());
  std::unique_ptr<CProfileDataEntry> copy(CProfileDataEntry::CreateDataEntry(usedType));
  if (!copy) return nullptr;
  copy->SetComplete(entry.IsComplete());
  copy->SetDisplay(entry.IsDisplayEnable());
  copy->SetFormatType(entry.GetFormatType());
  copy->SetOptionInfo(entry.GetOptionInfo());
  copy->SetLabelString(entry.GetLabelString());
  auto* const container = dynamic_cast<CContainerEntry*>(&entry);
  auto* const containerCopy = dynamic_cast<CContainerEntry*>(copy.get());
  if (container != nullptr && containerCopy != nullptr) {
    if (!CopyContainer(*container, *containerCopy)) return nullptr;
  } else {
    CopyPayloadAndBuffer(entry, *copy);
  }
  return copy;
}

CCalibrationContainerEntry* AddCalibration(CCalibrationHistoryEntry& history, NewCalibration calibration) {
  TargetOf(history, calibration.time);
  auto entry = std::make_unique<CCalibrationContainerEntry>();
  entry->SetOptionInfo(FreshCode(history, CodesOf(history), {}));
  entry->SetComplete(true);
  tag_ContainerData& description = *entry->GetContainerData();
  description.Value = calibration.value;
  description.Time = calibration.time;
  CopyText(description.Name, calibration.name.substr(0, 20));
  AddCurves(*entry, std::move(calibration.inkLimit));
  AddCurves(*entry, std::move(calibration.linearization));
  AddCurves(*entry, std::move(calibration.grayBalance));
  entry->DataToBuffer();
  CCalibrationContainerEntry* const added = entry.release();
  history.InsertProfileDataEntry(history.GetEntryCount(), added);
  return added;
}

std::vector<std::uint32_t> CollidingCodes(const CCalibrationHistoryEntry& history,
                                          const CCalibrationHistoryEntry& source) {
  Codes taken = CodesOf(history);
  std::vector<std::uint32_t> colliding;
  for (CProfileDataEntry* const child : source.GetChildData().Children()) {
    if (IsCalibration(*child) && !taken.insert(child->GetOptionInfo()).second) {
      colliding.push_back(child->GetOptionInfo());
    }
  }
  return colliding;
}

std::optional<std::vector<ImportedCalibration>> ImportCalibrations(CCalibrationHistoryEntry& history,
                                                                   CCalibrationHistoryEntry& source) {
  if (&history == &source) return std::nullopt;
  std::vector<std::unique_ptr<CProfileDataEntry>> copies;
  for (CProfileDataEntry* const child : source.GetChildData().Children()) {
    const bool isNew = history.GetProfileDataEntry(child->GetUsedType(), child->GetOptionInfo()) == nullptr;
    if (IsTarget(*child) || !(IsCalibration(*child) || isNew)) continue;
    copies.push_back(CloneEntry(*child));
    if (!copies.back()) return std::nullopt;
  }

  CProfileDataEntry& target = TargetOf(history, 0);
  if (CProfileDataEntry* const from = source.GetProfileDataEntry(CProfileDataEntry::kCalibrationTarget, 0)) {
    from->Copy(target);
    target.BufferToData();
  }
  std::vector<ImportedCalibration> imported;
  Codes taken = CodesOf(history);
  const Codes wanted = CodesOf(source);
  int position = 1;
  for (std::unique_ptr<CProfileDataEntry>& copy : copies) {
    if (IsCalibration(*copy)) {
      const std::uint32_t code = copy->GetOptionInfo();
      if (taken.contains(code)) copy->SetOptionInfo(FreshCode(history, taken, wanted));
      taken.insert(copy->GetOptionInfo());
      imported.push_back({code, copy->GetOptionInfo()});
    }
    history.InsertProfileDataEntry(position++, copy.release());
  }
  RaiseNextId(history, taken);
  return imported;
}

}  // namespace nvx
