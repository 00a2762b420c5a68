#include "entries/entry_fields.h"

#include <nvxprofile/mask_download.h>

#include <memory>
#include <utility>

namespace nvx {
namespace {

using Record = CMaskParameterDataEntry;
using Pattern = CMaskPatternDataEntry;

// Leaves the data count alone: it says how many blocks there are.
void DescribeHeader(FieldCodec& codec, tagWeftHeader& header) {
  codec.Group({"weftHeader"}, [&] {
    codec.Number({"versionMajor"}, header.VersionMajor);
    codec.Number({"versionMinor"}, header.VersionMinor);
    codec.Numbers({.name = "reserved", .count = {2, 2}}, std::span<std::uint32_t>(header.Reserved));
  });
}

Field BytesField(const char* name) { return {.name = name, .isBulk = true}; }

constexpr Field kBlockType = {.name = "blockType", .values = {1, 6}};

void TellBlock(FieldCodec& codec, tagWeftDatas block) {
  codec.Number(kBlockType, block.BlockType);
  codec.Tell({"values"}, std::span<const std::uint32_t>(block.Values, block.ValueCount));
  codec.Bytes(BytesField("bytes"), {block.Bytes, block.ByteCount});
}

// An entry of one block. The type of a block says how many values and bytes it has.
std::unique_ptr<CMaskDownLoadEntry> MakeBlock(FieldCodec& codec) {
  std::uint32_t type = 0;
  std::vector<std::uint32_t> values;
  codec.Number(kBlockType, type);
  codec.Numbers({"values"}, values);
  const std::vector<std::uint8_t> bytes = codec.Bytes(BytesField("bytes"), {});
  auto entry = std::make_unique<CMaskDownLoadEntry>();
  entry->Initialize();
  entry->SetWeftDataParameter(0, type);
  tagWeftDatas& block = entry->GetWeftBlocks()[0];
  if (values.size() != block.ValueCount || bytes.size() != block.ByteCount) {
    codec.Refuse("", "a block of type " + std::to_string(type) + " has " + std::to_string(block.ValueCount) +
                         " values and " + std::to_string(block.ByteCount) + " bytes");
  }
  std::copy(values.begin(), values.end(), block.Values);
  std::copy(bytes.begin(), bytes.end(), block.Bytes);
  return entry;
}

// Gives the entry the header and the blocks.
void Take(CMaskDownLoadEntry& entry, tagWeftHeader header,
          std::span<const std::unique_ptr<CMaskDownLoadEntry>> blocks) {
  header.DataCount = static_cast<std::uint32_t>(blocks.size());
  entry.Initialize(header.DataCount);
  for (std::uint32_t i = 0; i < header.DataCount; ++i) {
    std::swap(entry.GetWeftBlocks()[i], blocks[i]->GetWeftBlocks()[0]);
  }
  *entry.GetWeftHeader() = header;
}

std::vector<std::uint32_t> NumbersOf(const Record& record, std::uint32_t count,
                                     std::uint32_t (Record::*numberAt)(int) const) {
  std::vector<std::uint32_t> numbers;
  for (std::uint32_t i = 0; i < count; ++i) numbers.push_back((record.*numberAt)(static_cast<int>(i)));
  return numbers;
}

void DescribeRecord(FieldCodec& codec, Record& record) {
  using File = CMaskParameterFile;
  std::vector<std::uint32_t> colors = NumbersOf(record, record.GetLayerColorCount(), &Record::GetLeyerColor);
  std::vector<std::uint32_t> ids = NumbersOf(record, record.GetUsePatternIDCount(), &Record::GetUsePatternID);
  codec.Number({"pass"}, record, &Record::GetPass, &Record::SetPass);
  codec.Number({"specialColorsetCode"}, record, &Record::GetSpecialColorsetCode, &Record::SetSpecialColorsetCode);
  codec.Number({"printMethod"}, record, &Record::GetPrintMethod, &Record::SetPrintMethod);
  codec.Numbers({.name = "layerColors", .count = {0, File::kMostLayerColors}}, colors);
  codec.Numbers({.name = "usePatternIDs", .count = {0, File::kMostUsePatternIDs}}, ids);
  const std::vector<std::uint8_t> data =
      codec.Bytes(BytesField("paramData"), {std::as_const(record).GetParamDataBuffer(), record.GetParamDataSize()});
  if (!codec.Fills()) return;
  for (const std::uint32_t color : colors) record.AddLayerColor(color);
  for (const std::uint32_t id : ids) record.AddUsePatternID(id);
  record.SetParamDataBuffer(data.data(), static_cast<std::uint32_t>(data.size()));
}

void DescribePattern(FieldCodec& codec, Pattern& pattern) {
  codec.Number({"maskPatternID"}, pattern, &Pattern::GetMaskPatternID, &Pattern::SetMaskPatternID);
  const std::vector<std::uint8_t> bytes = codec.Bytes(
      BytesField("maskPattern"), {std::as_const(pattern).GetMaskPatternBuffer(), pattern.GetMaskPatternSize()});
  if (codec.Fills()) pattern.SetMaskPatternBuffer(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

constexpr const char* kNoFit = "the masks do not fit their form";

}  // namespace

void Describe(FieldCodec& codec, CMaskDownLoadEntry& entry) {
  tagWeftHeader header = *std::as_const(entry).GetWeftHeader();
  std::vector<std::unique_ptr<CMaskDownLoadEntry>> made;
  DescribeHeader(codec, header);
  codec.Groups(
      {"weftData"}, std::as_const(entry).GetWeftBlocks(), [&](const tagWeftDatas& block) { TellBlock(codec, block); },
      [&](std::size_t) { made.push_back(MakeBlock(codec)); });
  if (codec.Fills()) Take(entry, header, made);
  codec.Rebuild(entry, kNoFit);
}

void Describe(FieldCodec& codec, CMaskDownloadIncludePatternEntry& entry) {
  using Entry = CMaskDownloadIncludePatternEntry;
  CMaskParameterData& records = codec.PayloadOf(entry, &Entry::GetMaskParameterData, &Entry::GetMaskParameterData);
  CMaskPatternData& patterns = codec.PayloadOf(entry, &Entry::GetMaskPatternData, &Entry::GetMaskPatternData);
  CMaskDownLoadEntry& base = entry;
  DescribeHeader(codec, codec.PayloadOf(base, &CMaskDownLoadEntry::GetWeftHeader, &CMaskDownLoadEntry::GetWeftHeader));
  if (codec.Fills()) {
    *entry.GetWeftDataCount() = 1;
    records.DeleteContents();
    patterns.DeleteContents();
  }
  codec.Groups(
      {"maskParameters"}, records.Entries(), [&](Record* record) { DescribeRecord(codec, *record); },
      [&](std::size_t) {
        auto record = std::make_unique<Record>();
        DescribeRecord(codec, *record);
        records.AddTail(record.release());
      });
  codec.Groups(
      {"maskPatterns"}, patterns.Entries(), [&](Pattern* pattern) { DescribePattern(codec, *pattern); },
      [&](std::size_t) {
        auto pattern = std::make_unique<Pattern>();
        DescribePattern(codec, *pattern);
        if (!patterns.Add(pattern.release())) codec.Refuse("", "the ID stands twice");
      });
  codec.Rebuild(entry, kNoFit);
}

}  // namespace nvx
