// Containers with their children nested, targets and info records.
#include "core/byte_order.h"
#include "entries/entry_fields.h"

#include <nvxprofile/calibration.h>

#include <cstring>
#include <memory>
#include <set>
#include <utility>

namespace nvx {
namespace {

using Keys = std::set<std::pair<std::uint32_t, std::uint32_t>>;  // used types and option infos

constexpr std::uint32_t kTimeSize = 8;
// Characters that the form keeps of the name of a calibration.
constexpr std::int64_t kLongestName = 20;

void DescribeContainerData(FieldCodec& codec, CContainerEntry& container) {
  tag_ContainerData data = *std::as_const(container).GetChildData().GetContainerData();
  codec.Group({"containerData", Presence::kOptional}, [&] {
    codec.Number({"value", Presence::kOptional}, data.Value);
    codec.Number({"time", Presence::kOptional}, data.Time);
    codec.Member({.name = "name", .presence = Presence::kOptional, .count = {0, kLongestName}}, data.Name);
    if (codec.Fills()) container.SetContainerData(&data);
  });
}

// A child stands in its container when its payload is filled, so that it knows how deep it nests.
void DescribeChild(FieldCodec& codec, CProfileDataEntry& child) {
  bool isComplete = child.IsComplete();
  std::uint32_t optionInfo = child.GetOptionInfo();
  codec.Flag({"complete", Presence::kOptional}, isComplete);
  codec.Number({"optionInfo", Presence::kOptional}, optionInfo);
  if (codec.Fills()) {
    codec.Payload({"payload", Presence::kOptional}, child);
    child.SetComplete(isComplete);
  }
  if (auto* const container = dynamic_cast<CContainerEntry*>(&child)) DescribeContainerData(codec, *container);
  if (!codec.Fills()) codec.Payload({"payload", Presence::kOptional}, child);
}

void TellChild(FieldCodec& codec, CProfileDataEntry& child) {
  std::uint32_t usedType = child.GetUsedType();
  codec.EntryType({"usedType"}, usedType);
  DescribeChild(codec, child);
}

void MakeChild(FieldCodec& codec, CContainerData& data, Keys& taken) {
  std::uint32_t usedType = 0;
  std::uint32_t optionInfo = 0;
  codec.EntryType({"usedType"}, usedType);
  codec.Number({"optionInfo", Presence::kOptional}, optionInfo);
  if (!taken.emplace(usedType, optionInfo).second) {
    codec.Refuse("", "an entry before has the same type and option info");
  }
  std::unique_ptr<CProfileDataEntry> child(
      CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(usedType)));
  if (!child) codec.Refuse("", "no entry class has the used type " + std::to_string(usedType));
  child->SetOptionInfo(optionInfo);
  child->SetComplete(true);
  CProfileDataEntry& placed = *child;
  data.Insert(data.Children().Count(), std::move(child));
  DescribeChild(codec, placed);
}

std::vector<std::uint8_t> DescribeInfoRecord(FieldCodec& codec, const char* name, const tag_CalibrationInfo& record) {
  return codec.Bytes({.name = name, .presence = Presence::kOptional, .count = {0, sizeof record.Data}}, record.Data);
}

tag_CalibrationInfo RecordOf(std::span<const std::uint8_t> bytes) {
  tag_CalibrationInfo record;
  std::copy(bytes.begin(), bytes.end(), record.Data);
  return record;
}

}  // namespace

void Describe(FieldCodec& codec, CContainerEntry& entry) {
  if (auto* const history = dynamic_cast<CCalibrationHistoryEntry*>(&entry)) {
    codec.Number({"nextID", Presence::kOptional}, *history, &CCalibrationHistoryEntry::PeekNextID,
                 &CCalibrationHistoryEntry::SetNextID);
  }
  const CContainerData& look = std::as_const(entry).GetChildData();
  if (codec.Fills() && look.GetLevel() > CContainerEntry::kMaxLevels) {
    codec.Refuse("", "containers nest " + std::to_string(CContainerEntry::kMaxLevels) + " levels deep at most");
  }
  if (codec.Fills()) entry.GetChildData().DeleteContents();
  Keys taken;
  codec.Groups(
      {"entries"}, look.Children(), [&](CProfileDataEntry* child) { TellChild(codec, *child); },
      [&](std::size_t) { MakeChild(codec, entry.GetChildData(), taken); });
  // What did not parse keeps its bytes.
  codec.Rebuild(entry, "the entries are too many for one entry");
}

// The payload of a target is the start of its buffer.
void Describe(FieldCodec& codec, CCalibrationTargetEntry& entry) {
  std::int64_t time = entry.GetCreateTime();
  const auto bytes = entry.Bytes();
  const auto rest = bytes.size() > kTimeSize ? bytes.subspan(kTimeSize) : std::span<const std::uint8_t>();
  codec.Number({"createTime"}, time);
  const Field field = {"rest", Presence::kOptional};
  if (!codec.Fills()) {
    if (!rest.empty()) codec.Bytes(field, rest);
    return;
  }
  const std::vector<std::uint8_t> given = codec.Bytes(field, rest);
  std::uint8_t* const buffer = entry.GetBuffer(static_cast<std::uint32_t>(kTimeSize + given.size()));
  StoreLittle(buffer, static_cast<std::uint64_t>(time));
  std::copy(given.begin(), given.end(), buffer + kTimeSize);
  entry.BufferToData();
}

void Describe(FieldCodec& codec, CCalibrationInfoEntry& entry) {
  const CCalibrationInfoEntry& look = entry;
  const auto base = DescribeInfoRecord(codec, "calibrationInfo", *look.GetCalibrationInfo());
  const auto extended = DescribeInfoRecord(codec, "calibrationInfoEx", *look.GetCalibrationInfoEx());
  if (!codec.Fills()) return;
  const tag_CalibrationInfo records[] = {RecordOf(base), RecordOf(extended)};
  entry.SetCalibrationInfo(&records[0]);
  entry.SetCalibrationInfoEx(&records[1]);
  codec.Rebuild(entry, "the records cannot be written");
}

}  // namespace nvx
