#include "core/payload.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>

#include <cstring>
#include <memory>
#include <vector>

CCalibrationContainerEntry::CCalibrationContainerEntry()
    : CContainerEntry(kCalibrationContainer, true, Removal::kForbidden) {}

bool CCalibrationContainerEntry::BufferToData() { return CContainerEntry::BufferToData(); }
bool CCalibrationContainerEntry::DataToBuffer() { return CContainerEntry::DataToBuffer(); }

CCalibrationHistoryEntry::CCalibrationHistoryEntry() : CContainerEntry(kCalibrationHistory, false, Removal::kAllowed) {}

bool CCalibrationHistoryEntry::BufferToData() { return ParseChildren(nextId_); }
bool CCalibrationHistoryEntry::DataToBuffer() { return RebuildForm(nextId_); }

bool CCalibrationHistoryEntry::DoImport(CProfileDataEntry* source) {
  auto* const from = dynamic_cast<CCalibrationHistoryEntry*>(source);
  if (from == nullptr) return false;
  if (from == this) return true;
  if (from->GetEntryCount() == GetEntryCount()) {
    from->Copy(*this);
    BufferToData();
    return true;
  }

  CProfileDataEntry* const target = from->GetProfileDataEntry(kCalibrationTarget, 0);
  const int first = target != nullptr ? 1 : 0;
  std::vector<std::unique_ptr<CProfileDataEntry>> taken;
  for (int i = first; i < from->GetEntryCount(); ++i) {
    taken.push_back(nvx::CloneEntry(*from->GetProfileDataEntry(i)));
    if (!taken.back()) return false;
  }

  if (target != nullptr) {
    CProfileDataEntry* own = GetProfileDataEntry(kCalibrationTarget, 0);
    if (own == nullptr) {
      own = CreateDataEntry(kCalibrationTarget);
      SetProfileDataEntry(own);
    }
    target->Copy(*own);
    own->BufferToData();
  }
  int position = first;
  for (std::unique_ptr<CProfileDataEntry>& entry : taken) InsertProfileDataEntry(position++, entry.release());
  nextId_ += static_cast<std::uint32_t>(taken.size());
  return true;
}

CCalibrationTargetEntry::CCalibrationTargetEntry()
    : CProfileDataEntry(kCalibrationTarget, kFormatCalibrationTarget, true) {}

bool CCalibrationTargetEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) {
    std::uint8_t bytes[sizeof createTime_];
    if (!nvx::ReadExact(stream, bytes, sizeof bytes)) return nvx::Refuse(stream, "calibration target: below 8 bytes");
    createTime_ = static_cast<std::int64_t>(nvx::LoadLittle<std::uint64_t>(bytes));
    return true;
  });
}

CCalibrationInfoEntry::CCalibrationInfoEntry() : CProfileDataEntry(kCalibrationInfo, kFormatCalibrationInfo, true) {
  std::memset(GetBuffer(2 * kRecordLength), 0, 2 * kRecordLength);
}

CCalibrationInfoEntry::Records& CCalibrationInfoEntry::UseRecords() {
  if (!records_) records_ = std::make_unique<Records>();
  return *records_;
}

void CCalibrationInfoEntry::SetCalibrationInfo(const tag_CalibrationInfo* info) {
  if (info != nullptr) UseRecords().base = *info;
}

void CCalibrationInfoEntry::SetCalibrationInfoEx(const tag_CalibrationInfo* info) {
  if (info != nullptr) UseRecords().extended = *info;
}

bool CCalibrationInfoEntry::BufferToData() {
  return nvx::ParseBuffer(*this, [&](CNvxFile& stream) {
    if (!nvx::Holds(stream, 1, kRecordLength)) return nvx::Refuse(stream, "calibration info: below 512 bytes");
    Records& records = UseRecords();
    stream.Read(records.base.Data, kRecordLength);
    if (nvx::Holds(stream, 1, kRecordLength)) stream.Read(records.extended.Data, kRecordLength);
    return true;
  });
}

bool CCalibrationInfoEntry::DataToBuffer() {
  const Records& records = UseRecords();
  std::uint8_t* const buffer = GetBuffer(2 * kRecordLength);
  std::memcpy(buffer, records.base.Data, kRecordLength);
  std::memcpy(buffer + kRecordLength, records.extended.Data, kRecordLength);
  return true;
}
