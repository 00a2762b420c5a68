// Calibration histories as JSON: containers with their children nested, targets and info records.
#include "calibration_view.h"
#include "loading.h"
#include "payload.h"

#include <nvxprofile/calibration.h>

#include <cstring>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace nvx::tool {
namespace {

constexpr std::uint32_t kTimeSize = 8;

std::int64_t Int64(const Node& node) {
  return node.Integer(std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max());
}

Json DescriptionToJson(const tag_ContainerData& description) {
  const std::u16string name(description.Name, std::char_traits<char16_t>::length(description.Name));
  return {{"value", description.Value}, {"time", description.Time}, {"name", WideToJson(name)}};
}

tag_ContainerData DescriptionFromJson(const Node& node) {
  tag_ContainerData description;
  if (node.Has("value")) description.Value = node.At("value").I32();
  if (node.Has("time")) description.Time = Int64(node.At("time"));
  if (node.Has("name")) {
    const std::u16string name = WideFromJson(node.At("name"), kLongestCalibrationName);
    name.copy(description.Name, name.size());
  }
  return description;
}

Json ChildToJson(CProfileDataEntry& child, Detail detail) {
  Json json = {{"usedType", child.GetUsedType()},
               {"type", std::string(EntryName(child.GetUsedType()))},
               {"class", std::string(ClassName(child.GetUsedType()))},
               {"complete", child.IsComplete()},
               {"optionInfo", child.GetOptionInfo()}};
  if (auto* const container = dynamic_cast<CContainerEntry*>(&child)) {
    json["containerData"] = DescriptionToJson(*container->GetContainerData());
  }
  Json payload = PayloadToJson(child, detail);
  if (!payload.is_null()) {
    json["payload"] = std::move(payload);
  } else {
    json["bytes"] = BytesToJson(child.Bytes().data(), child.GetSize(), detail);
  }
  return json;
}

// Fills a child that stands in its container already, so that it knows how deep it nests.
void FillChild(const Node& node, CProfileDataEntry& child) {
  if (node.Has("bytes")) {
    SetBytes(child, node.At("bytes").Base64());
    node.PassOver("payload");
  } else if (node.Has("payload")) {
    PayloadFromJson(node.At("payload"), child);
  }
  child.SetComplete(!node.Has("complete") || node.At("complete").Bool());
  auto* const container = dynamic_cast<CContainerEntry*>(&child);
  if (container != nullptr && node.Has("containerData")) {
    const tag_ContainerData description = DescriptionFromJson(node.At("containerData"));
    container->SetContainerData(&description);
  }
}

Json ContainerToJson(CContainerEntry& container, Detail detail) {
  Json json = Json::object();
  if (const auto* const history = dynamic_cast<CCalibrationHistoryEntry*>(&container)) {
    json["nextID"] = history->PeekNextID();
  }
  Json entries = Json::array();
  for (int i = 0; i < container.GetEntryCount(); ++i) {
    entries.push_back(ChildToJson(*container.GetProfileDataEntry(i), detail));
  }
  json["entries"] = std::move(entries);
  return json;
}

void ContainerFromJson(const Node& node, CContainerEntry& container) {
  CContainerData& data = container.GetChildData();
  if (data.GetLevel() > CContainerEntry::kMaxLevels) {
    node.Fail("containers nest " + std::to_string(CContainerEntry::kMaxLevels) + " levels deep at most");
  }
  std::set<std::pair<std::uint32_t, std::uint32_t>> taken;
  for (const Node& item : node.At("entries").Items()) {
    const std::uint32_t usedType = UsedTypeFromJson(item);
    const std::uint32_t optionInfo = item.U32Or("optionInfo", 0);
    if (!taken.emplace(usedType, optionInfo).second) item.Fail("an entry before has the same type and option info");
    EntryPointer child = MakeEntry(usedType);
    if (!child) item.Fail("no entry class has the used type " + std::to_string(usedType));
    child->SetOptionInfo(optionInfo);
    CProfileDataEntry& placed = *child;
    data.Insert(data.Children().Count(), std::move(child));
    FillChild(item, placed);
  }
  if (auto* const history = dynamic_cast<CCalibrationHistoryEntry*>(&container)) {
    history->SetNextID(node.U32Or("nextID", 0));
  }
  // What did not parse keeps its bytes.
  if (!container.DataToBuffer()) node.Fail("the entries are too many for one entry");
}

Json TargetToJson(CCalibrationTargetEntry& target) {
  Json json = {{"createTime", target.GetCreateTime()}};
  if (target.GetSize() > kTimeSize) {
    json["rest"] = ToBase64(target.Bytes().data() + kTimeSize, target.GetSize() - kTimeSize);
  }
  return json;
}

void TargetFromJson(const Node& node, CCalibrationTargetEntry& target) {
  const auto time = static_cast<std::uint64_t>(Int64(node.At("createTime")));
  std::vector<std::uint8_t> bytes;
  for (std::uint32_t i = 0; i < kTimeSize; ++i) bytes.push_back(static_cast<std::uint8_t>(time >> (8 * i)));
  if (node.Has("rest")) {
    const std::vector<std::uint8_t> rest = node.At("rest").Base64();
    bytes.insert(bytes.end(), rest.begin(), rest.end());
  }
  SetBytes(target, bytes);
}

tag_CalibrationInfo RecordFromBytes(const Node& node) {
  const std::vector<std::uint8_t> bytes = node.Base64();
  tag_CalibrationInfo record;
  if (bytes.size() > sizeof record.Data) node.Fail("the record is longer than 512 bytes");
  std::memcpy(record.Data, bytes.data(), bytes.size());
  return record;
}

Json InfoRecordsToJson(CCalibrationInfoEntry& info) {
  const auto bytes = [](const tag_CalibrationInfo* record) { return ToBase64(record->Data, sizeof record->Data); };
  return {{"calibrationInfo", bytes(info.GetCalibrationInfo())},
          {"calibrationInfoEx", bytes(info.GetCalibrationInfoEx())}};
}

void InfoRecordsFromJson(const Node& node, CCalibrationInfoEntry& info) {
  tag_CalibrationInfo record;
  if (node.Has("calibrationInfo")) record = RecordFromBytes(node.At("calibrationInfo"));
  info.SetCalibrationInfo(&record);
  record = {};
  if (node.Has("calibrationInfoEx")) record = RecordFromBytes(node.At("calibrationInfoEx"));
  info.SetCalibrationInfoEx(&record);
  info.DataToBuffer();
}

}  // namespace

// The buffer is what a file holds, so the document tells of the buffer.
Json CalibrationToJson(CProfileDataEntry& entry, Detail detail) {
  if (!entry.BufferToData()) return nullptr;
  if (auto* const container = dynamic_cast<CContainerEntry*>(&entry)) return ContainerToJson(*container, detail);
  if (auto* const target = dynamic_cast<CCalibrationTargetEntry*>(&entry)) return TargetToJson(*target);
  if (auto* const info = dynamic_cast<CCalibrationInfoEntry*>(&entry)) return InfoRecordsToJson(*info);
  return nullptr;
}

void CalibrationFromJson(const Node& node, CProfileDataEntry& entry) {
  if (auto* const container = dynamic_cast<CContainerEntry*>(&entry)) {
    ContainerFromJson(node, *container);
  } else if (auto* const target = dynamic_cast<CCalibrationTargetEntry*>(&entry)) {
    TargetFromJson(node, *target);
  } else if (auto* const info = dynamic_cast<CCalibrationInfoEntry*>(&entry)) {
    InfoRecordsFromJson(node, *info);
  } else {
    node.Fail("the entry is no calibration");
  }
}

}  // namespace nvx::tool
