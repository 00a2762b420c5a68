#include "core/byte_order.h"
#include "core/payload.h"
#include "core/text.h"

#include <nvxprofile/calibration_history.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

namespace nvx {
namespace {

using Codes = std::set<std::uint32_t>;

void CopyBuffer(CProfileDataEntry& source, CProfileDataEntry& copy) {
  if (source.GetSize() == 0) return copy.DeleteBuffer();
  std::memcpy(copy.GetBuffer(source.GetSize()), source.Bytes().data(), source.GetSize());
}

// Gives the copy buffer and payload of the source, each of which may say more than the other. False for an edited
// payload that its form cannot carry.
bool CopyPayloadAndBuffer(CProfileDataEntry& source, CProfileDataEntry& copy) {
  const PayloadState state = source.GetPayloadState();
  if (state == PayloadState::kEdited || state == PayloadState::kUnread) {
    SharedBytes form = PayloadKeeper::FormOf(source);
    if (form.IsEmpty() && state == PayloadState::kEdited) return false;
    PayloadKeeper::Give(copy, std::move(form));
    copy.BufferToData();
    CopyBuffer(source, copy);
  } else {
    CopyBuffer(source, copy);
    copy.BufferToData();
  }
  return true;
}

// False if a child cannot be copied.
bool CopyChildren(const CContainerEntry& source, CContainerEntry& copy) {
  const CContainerData& children = source.GetChildData();
  copy.SetContainerData(children.GetContainerData());
  CContainerData& copies = copy.GetChildData();
  for (CProfileDataEntry* const child : children.Children()) {
    std::unique_ptr<CProfileDataEntry> childCopy = CloneEntry(*child);
    if (!childCopy) return false;
    copies.Insert(copies.Children().Count(), std::move(childCopy));
  }
  const auto* const sourceHistory = dynamic_cast<const CCalibrationHistoryEntry*>(&source);
  auto* const copyHistory = dynamic_cast<CCalibrationHistoryEntry*>(&copy);
  if (sourceHistory != nullptr && copyHistory != nullptr) copyHistory->SetNextID(sourceHistory->PeekNextID());
  return true;
}

bool CopyContents(CProfileDataEntry& source, CProfileDataEntry& copy) {
  const auto* const container = dynamic_cast<const CContainerEntry*>(&source);
  if (container == nullptr) {
    if (!CopyPayloadAndBuffer(source, copy)) return false;
  } else {
    if (!CopyChildren(*container, dynamic_cast<CContainerEntry&>(copy))) return false;
    CopyBuffer(source, copy);
  }
  PayloadKeeper::CopyState(source, copy);
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
CProfileDataEntry& TargetOf(CContainerData& history, std::int64_t createTime) {
  CProfileDataEntry* const present = history.Find(CProfileDataEntry::kCalibrationTarget, 0);
  if (present != nullptr) return *present;
  auto made = std::make_unique<CCalibrationTargetEntry>();
  CProfileDataEntry& target = *made;
  StoreLittle(target.GetBuffer(sizeof createTime), static_cast<std::uint64_t>(createTime));
  target.BufferToData();
  history.Insert(0, std::move(made));
  return target;
}

void AddCurves(CCalibrationContainerEntry& calibration, std::unique_ptr<CProfileCurveEntry> curves) {
  if (!curves) return;
  curves->SetOptionInfo(0);
  curves->SetComplete(true);
  CContainerData& children = calibration.GetChildData();
  children.Insert(children.Children().Count(), std::move(curves));
}

void RaiseNextId(CCalibrationHistoryEntry& history, const Codes& taken) {
  if (!taken.empty() && *taken.rbegin() >= history.PeekNextID()) history.SetNextID(*taken.rbegin() + 1);
}

}  // namespace

std::unique_ptr<CProfileDataEntry> CloneEntry(CProfileDataEntry& entry) {
  const auto usedType = static_cast<CProfileDataEntry::UsedType>(entry.GetUsedType());
  std::unique_ptr<CProfileDataEntry> copy(CProfileDataEntry::CreateDataEntry(usedType));
  if (!copy || !CopyContents(entry, *copy)) return nullptr;
  copy->SetComplete(entry.IsComplete());
  copy->SetDisplay(entry.IsDisplayEnable());
  copy->SetFormatType(entry.GetFormatType());
  copy->SetOptionInfo(entry.GetOptionInfo());
  copy->SetLabelString(entry.GetLabelString());
  return copy;
}

CCalibrationContainerEntry* AddCalibration(CCalibrationHistoryEntry& history, NewCalibration calibration) {
  if (!PayloadKeeper::SaysAll(history)) return nullptr;
  auto entry = std::make_unique<CCalibrationContainerEntry>();
  entry->SetComplete(true);
  tag_ContainerData& description = *entry->GetContainerData();
  description.Value = calibration.value;
  description.Time = calibration.time;
  CopyText(description.Name, calibration.name.substr(0, 20));
  AddCurves(*entry, std::move(calibration.inkLimit));
  AddCurves(*entry, std::move(calibration.linearization));
  AddCurves(*entry, std::move(calibration.grayBalance));
  if (!entry->DataToBuffer()) return nullptr;

  CContainerData& children = history.GetChildData();
  TargetOf(children, calibration.time);
  entry->SetOptionInfo(FreshCode(history, CodesOf(history), {}));
  CCalibrationContainerEntry* const added = entry.get();
  children.Insert(children.Children().Count(), std::move(entry));
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
  if (&history == &source || !PayloadKeeper::SaysAll(history) || !PayloadKeeper::SaysAll(source)) return std::nullopt;
  const CContainerData& theirs = std::as_const(source).GetChildData();
  CContainerData& ours = history.GetChildData();
  std::vector<std::unique_ptr<CProfileDataEntry>> copies;
  for (CProfileDataEntry* const child : theirs.Children()) {
    const bool isNew = ours.Find(child->GetUsedType(), child->GetOptionInfo()) == nullptr;
    if (IsTarget(*child) || !(IsCalibration(*child) || isNew)) continue;
    copies.push_back(CloneEntry(*child));
    if (!copies.back()) return std::nullopt;
  }

  CProfileDataEntry& target = TargetOf(ours, 0);
  if (CProfileDataEntry* const from = theirs.Find(CProfileDataEntry::kCalibrationTarget, 0)) {
    from->Copy(target);
    target.BufferToData();
  }
  std::vector<ImportedCalibration> imported;
  Codes taken = CodesOf(history);
  const Codes wanted = CodesOf(source);
  std::size_t position = 1;
  for (std::unique_ptr<CProfileDataEntry>& copy : copies) {
    if (IsCalibration(*copy)) {
      const std::uint32_t code = copy->GetOptionInfo();
      if (taken.contains(code)) copy->SetOptionInfo(FreshCode(history, taken, wanted));
      taken.insert(copy->GetOptionInfo());
      imported.push_back({code, copy->GetOptionInfo()});
    }
    ours.Insert(position++, std::move(copy));
  }
  RaiseNextId(history, taken);
  return imported;
}

}  // namespace nvx
