// Print masks as JSON: data blocks (type 27), parameter records and patterns (type 29).
#include "payload.h"

#include <nvxprofile/mask_download.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace nvx::tool {
namespace {

Json HeaderToJson(const tagWeftHeader& header) {
  return {{"versionMajor", header.VersionMajor},
          {"versionMinor", header.VersionMinor},
          {"reserved", {header.Reserved[0], header.Reserved[1]}}};
}

// Leaves the data count alone.
void HeaderFromJson(const Node& node, tagWeftHeader& header) {
  header.VersionMajor = node.At("versionMajor").U32();
  header.VersionMinor = node.At("versionMinor").U32();
  const std::vector<Node> reserved = node.At("reserved").Items();
  if (reserved.size() != 2) node.At("reserved").Fail("two numbers are expected");
  for (std::size_t i = 0; i < 2; ++i) header.Reserved[i] = reserved[i].U32();
}

Json BlockToJson(const tagWeftDatas& block, Detail detail) {
  Json values = Json::array();
  for (std::uint32_t i = 0; i < block.ValueCount; ++i) values.push_back(block.Values[i]);
  return {{"blockType", block.BlockType},
          {"values", std::move(values)},
          {"bytes", BytesToJson(block.Bytes, block.ByteCount, detail)}};
}

// Fills a block that has its type already.
void BlockFromJson(const Node& node, tagWeftDatas& block) {
  const std::vector<Node> values = node.At("values").Items();
  const std::vector<std::uint8_t> bytes = node.At("bytes").Base64();
  if (values.size() != block.ValueCount || bytes.size() != block.ByteCount) {
    node.Fail("a block of type " + std::to_string(block.BlockType) + " has " + std::to_string(block.ValueCount) +
              " values and " + std::to_string(block.ByteCount) + " bytes");
  }
  for (std::size_t i = 0; i < values.size(); ++i) block.Values[i] = values[i].U32();
  std::copy(bytes.begin(), bytes.end(), block.Bytes);
}

Json RecordToJson(CMaskParameterDataEntry& record, Detail detail) {
  Json colors = Json::array();
  for (std::uint32_t i = 0; i < record.GetLayerColorCount(); ++i) {
    colors.push_back(record.GetLeyerColor(static_cast<int>(i)));
  }
  Json ids = Json::array();
  for (std::uint32_t i = 0; i < record.GetUsePatternIDCount(); ++i) {
    ids.push_back(record.GetUsePatternID(static_cast<int>(i)));
  }
  return {{"pass", record.GetPass()},
          {"specialColorsetCode", record.GetSpecialColorsetCode()},
          {"printMethod", record.GetPrintMethod()},
          {"layerColors", std::move(colors)},
          {"usePatternIDs", std::move(ids)},
          {"paramData", BytesToJson(std::as_const(record).GetParamDataBuffer(), record.GetParamDataSize(), detail)}};
}

std::vector<Node> ItemsUpTo(const Node& node, std::size_t most) {
  std::vector<Node> items = node.Items();
  if (items.size() > most) node.Fail("at most " + std::to_string(most) + " numbers are expected");
  return items;
}

std::unique_ptr<CMaskParameterDataEntry> RecordFromJson(const Node& node) {
  auto record = std::make_unique<CMaskParameterDataEntry>();
  record->SetPass(node.At("pass").U32());
  record->SetSpecialColorsetCode(node.At("specialColorsetCode").U32());
  record->SetPrintMethod(node.At("printMethod").U32());
  for (const Node& color : ItemsUpTo(node.At("layerColors"), CMaskParameterFile::kMostLayerColors)) {
    record->AddLayerColor(color.U32());
  }
  for (const Node& id : ItemsUpTo(node.At("usePatternIDs"), CMaskParameterFile::kMostUsePatternIDs)) {
    record->AddUsePatternID(id.U32());
  }
  const std::vector<std::uint8_t> data = node.At("paramData").Base64();
  record->SetParamDataBuffer(data.data(), static_cast<std::uint32_t>(data.size()));
  return record;
}

std::unique_ptr<CMaskPatternDataEntry> PatternFromJson(const Node& node) {
  auto pattern = std::make_unique<CMaskPatternDataEntry>();
  pattern->SetMaskPatternID(node.At("maskPatternID").U32());
  const std::vector<std::uint8_t> bytes = node.At("maskPattern").Base64();
  pattern->SetMaskPatternBuffer(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  return pattern;
}

void RebuildMasks(const Node& node, CProfileDataEntry& entry) {
  if (!entry.DataToBuffer()) node.Fail("the masks do not fit their form");
}

}  // namespace

Json MaskDownloadToJson(CProfileDataEntry& entry, Detail detail) {
  auto* const masks = dynamic_cast<CMaskDownLoadEntry*>(&entry);
  if (masks == nullptr || !masks->BufferToData()) return nullptr;
  Json blocks = Json::array();
  for (const tagWeftDatas& block : masks->GetWeftBlocks()) blocks.push_back(BlockToJson(block, detail));
  return {{"weftHeader", HeaderToJson(*masks->GetWeftHeader())}, {"weftData", std::move(blocks)}};
}

void MaskDownloadFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const masks = dynamic_cast<CMaskDownLoadEntry*>(&entry);
  if (masks == nullptr) node.Fail("the entry holds no mask blocks");
  const std::vector<Node> items = node.At("weftData").Items();
  masks->Initialize(static_cast<std::uint32_t>(items.size()));
  for (std::uint32_t i = 0; i < items.size(); ++i) {
    masks->SetWeftDataParameter(i, static_cast<std::uint32_t>(items[i].At("blockType").Integer(1, 6)));
    BlockFromJson(items[i], masks->GetWeftBlocks()[i]);
  }
  HeaderFromJson(node.At("weftHeader"), *masks->GetWeftHeader());
  RebuildMasks(node, entry);
}

Json MaskPatternsToJson(CProfileDataEntry& entry, Detail detail) {
  auto* const masks = dynamic_cast<CMaskDownloadIncludePatternEntry*>(&entry);
  if (masks == nullptr || !masks->BufferToData()) return nullptr;
  Json records = Json::array();
  for (CMaskParameterDataEntry* const record : masks->GetMaskParameterData()->Entries()) {
    records.push_back(RecordToJson(*record, detail));
  }
  Json patterns = Json::array();
  for (CMaskPatternDataEntry* const pattern : masks->GetMaskPatternData()->Entries()) {
    patterns.push_back({{"maskPatternID", pattern->GetMaskPatternID()},
                        {"maskPattern", BytesToJson(std::as_const(*pattern).GetMaskPatternBuffer(),
                                                    pattern->GetMaskPatternSize(), detail)}});
  }
  return {{"weftHeader", HeaderToJson(*masks->GetWeftHeader())},
          {"maskParameters", std::move(records)},
          {"maskPatterns", std::move(patterns)}};
}

void MaskPatternsFromJson(const Node& node, CProfileDataEntry& entry) {
  auto* const masks = dynamic_cast<CMaskDownloadIncludePatternEntry*>(&entry);
  if (masks == nullptr) node.Fail("the entry holds no mask patterns");
  HeaderFromJson(node.At("weftHeader"), *masks->GetWeftHeader());
  *masks->GetWeftDataCount() = 1;
  masks->GetMaskParameterData()->DeleteContents();
  for (const Node& item : node.At("maskParameters").Items()) {
    masks->GetMaskParameterData()->AddTail(RecordFromJson(item).release());
  }
  masks->GetMaskPatternData()->DeleteContents();
  for (const Node& item : node.At("maskPatterns").Items()) {
    if (!masks->GetMaskPatternData()->Add(PatternFromJson(item).release())) item.Fail("the ID stands twice");
  }
  RebuildMasks(node, entry);
}

}  // namespace nvx::tool
