#include "core/payload.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr std::uint32_t kInfoSize = 2 * CCalibrationInfoEntry::kRecordLength;

}  // namespace

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
  if (!nvx::PayloadKeeper::SaysAll(*from) || !from->RenewBuffer()) return false;
  const auto& theirs = from->GetChildData().Children();
  return theirs.Count() == std::as_const(*this).GetChildData().Children().Count() ? ReplaceBy(*from)
                                                                                  : InsertFrom(*from);
}

// What the source's buffer holds is tried before anything here goes.
bool CCalibrationHistoryEntry::ReplaceBy(CCalibrationHistoryEntry& source) {
  CCalibrationHistoryEntry probe;
  return source.Copy(probe) && probe.BufferToData() && source.Copy(*this) && BufferToData();
}

bool CCalibrationHistoryEntry::InsertFrom(CCalibrationHistoryEntry& source) {
  if (!nvx::PayloadKeeper::SaysAll(*this)) return false;
  const CContainerData& theirs = std::as_const(source).GetChildData();
  CProfileDataEntry* const target = theirs.Find(kCalibrationTarget, 0);
  const std::size_t first = target != nullptr ? 1 : 0;
  std::vector<std::unique_ptr<CProfileDataEntry>> taken;
  for (std::size_t i = first; i < theirs.Children().Count(); ++i) {
    taken.push_back(nvx::CloneEntry(*theirs.Children().At(i)));
    if (!taken.back()) return false;
  }

  CContainerData& ours = GetChildData();
  if (target != nullptr) {
    if (ours.Find(kCalibrationTarget, 0) == nullptr) {
      ours.Insert(ours.Children().Count(), std::unique_ptr<CProfileDataEntry>(CreateDataEntry(kCalibrationTarget)));
    }
    CProfileDataEntry& own = *ours.Find(kCalibrationTarget, 0);
    target->Copy(own);
    own.BufferToData();
  }
  std::size_t position = first;
  for (std::unique_ptr<CProfileDataEntry>& entry : taken) ours.Insert(position++, std::move(entry));
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
  std::memset(CProfileDataEntry::GetBuffer(kInfoSize), 0, kInfoSize);
  nvx::PayloadKeeper::SetInStep(*this);
}

CCalibrationInfoEntry::Records& CCalibrationInfoEntry::UseRecords() {
  if (!records_) records_ = std::make_unique<Records>();
  return *records_;
}

CCalibrationInfoEntry::Records& CCalibrationInfoEntry::OpenRecords() {
  OpenPayload();
  return UseRecords();
}

const CCalibrationInfoEntry::Records& CCalibrationInfoEntry::LookAtRecords() const {
  static constexpr Records kZeros;
  return records_ ? *records_ : kZeros;
}

const tag_CalibrationInfo* CCalibrationInfoEntry::GetCalibrationInfo() const { return &LookAtRecords().base; }
const tag_CalibrationInfo* CCalibrationInfoEntry::GetCalibrationInfoEx() const { return &LookAtRecords().extended; }

tag_CalibrationInfo* CCalibrationInfoEntry::GetCalibrationInfo() { return &OpenRecords().base; }
tag_CalibrationInfo* CCalibrationInfoEntry::GetCalibrationInfoEx() { return &OpenRecords().extended; }

void CCalibrationInfoEntry::SetCalibrationInfo(const tag_CalibrationInfo* info) {
  if (info != nullptr) OpenRecords().base = *info;
}

void CCalibrationInfoEntry::SetCalibrationInfoEx(const tag_CalibrationInfo* info) {
  if (info != nullptr) OpenRecords().extended = *info;
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
  return nvx::RebuildBuffer(*this, nvx::BufferLength::kExact, [this](CNvxFile& stream) {
    const Records& records = UseRecords();
    return nvx::WriteExact(stream, records.base.Data, kRecordLength) &&
           nvx::WriteExact(stream, records.extended.Data, kRecordLength);
  });
}
