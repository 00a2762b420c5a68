#include "core/payload.h"
#include "core/stream.h"
#include "entries/large_parameter/large_parameter_records.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

using nvx::kFixedTable;
using nvx::kPatternTable;
using nvx::LargeParameterHeader;
using nvx::TwoArrayLengths;
using nvx::WordTableRecord;

namespace {

using FoundTable = nvx::FoundTable<CLargeParameterDataEntry>;

constexpr std::uint64_t kFixedBlockSize = nvx::kBlockMagicSize + nvx::kWordSize * CLargeParameterID001Entry::kWordCount;

// Adds the table that a record describes, without words, with its block at `start`; nothing for a broken rule.
std::optional<FoundTable> AddTable(CNvxFile& file, CLargeParameterData& data, const WordTableRecord& record,
                                   std::uint64_t start) {
  TwoArrayLengths lengths{};
  std::uint64_t size = kFixedBlockSize;
  if (record.usedType == kPatternTable) {
    const auto found = nvx::FindArrayLengths(file, start, record.dataSize);
    if (!found) return std::nullopt;
    lengths = *found;
    size = lengths.BlockSize();
  } else if (record.usedType != kFixedTable) {
    nvx::Refuse(file, "record: unknown used type");
    return std::nullopt;
  } else if (!nvx::HoldsBlock(file, start, size)) {
    nvx::RefuseAt(file, start, "fixed table: cut short");
    return std::nullopt;
  }
  const std::uint32_t sizes[] = {lengths.first, lengths.second};
  auto* const table = CLargeParameterDataEntry::CreateLargeParameterDataEntry(record.usedType, sizes);
  data.AddTail(table);
  if (record.usedType == kPatternTable) table->SetPatternCount(record.count);
  return FoundTable{table, size};
}

// Which arrays a block holds is said by its magic.
bool ReadBlock(CNvxFile& file, nvx::WordArrays& arrays) {
  std::uint8_t magic[nvx::kBlockMagicSize];
  if (!nvx::ReadExact(file, magic, sizeof magic)) return nvx::Refuse(file, "data block: cut short");
  const auto found = nvx::LoadLittle<std::uint32_t>(magic);
  if (found == LargeParameterHeader::kFixedMagic) return nvx::ReadWords(file, arrays.Words(0));
  if (found != LargeParameterHeader::kPatternMagics.first || arrays.Count() != 2) {
    return nvx::Refuse(file, "data block: wrong magic");
  }
  if (!nvx::ReadWords(file, arrays.Words(0))) return false;
  if (!nvx::ReadMagic(file, LargeParameterHeader::kPatternMagics.second)) {
    return nvx::Refuse(file, "array 1: wrong magic");
  }
  return nvx::ReadWords(file, arrays.Words(1));
}

bool IsCarried(const CLargeParameterDataEntry& table) {
  const nvx::WordArrays& arrays = table.Arrays();
  if (table.GetUsedType() == kPatternTable) return nvx::SaysItsLength(arrays);
  return table.GetUsedType() == kFixedTable && arrays.Count() == 1 &&
         arrays.Words(0).size() == CLargeParameterID001Entry::kWordCount;
}

WordTableRecord RecordOf(CLargeParameterDataEntry& table) {
  WordTableRecord record;
  record.magic = LargeParameterHeader::kRecordMagic;
  record.usedType = table.GetUsedType();
  record.dataSize = static_cast<std::uint32_t>(nvx::ArraysSize(table.Arrays()));
  record.count = table.GetUsedType() == kFixedTable ? static_cast<std::int32_t>(table.Arrays().Words(0).size())
                                                    : table.GetPatternCount();
  return record;
}

bool WriteBlock(CNvxFile& file, const CLargeParameterDataEntry& table) {
  const nvx::WordArrays& arrays = table.Arrays();
  return table.GetUsedType() == kFixedTable ? nvx::WriteWords(file, LargeParameterHeader::kFixedMagic, arrays.Words(0))
                                            : nvx::WriteTwoArrays(file, LargeParameterHeader::kPatternMagics, arrays);
}

}  // namespace

CLargeParameterFile* CLargeParameterFile::CreateLargeParameterFile(CNvxFile& file) {
  auto reader = std::make_unique<CLargeParameterFile>();
  return reader->LoadHeader(file) ? reader.release() : nullptr;
}

CLargeParameterFile::~CLargeParameterFile() = default;

bool CLargeParameterFile::LoadHeader(CNvxFile& file) {
  headerRead_ = false;
  file.SeekToBegin();
  LargeParameterHeader header;
  if (!nvx::ReadChecked(file, header)) return false;
  recordCount_ = header.recordCount;
  headerRead_ = true;
  return true;
}

bool CLargeParameterFile::LoadFile(CNvxFile& file, CLargeParameterData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  return nvx::ReadWordTables(
      file, recordCount_,
      [&](const WordTableRecord& record, std::uint64_t start) { return AddTable(file, *data, record, start); },
      [&](CLargeParameterDataEntry& table) { return ReadBlock(file, table.Arrays()); });
}

bool CLargeParameterFile::SaveFile(CNvxFile& file, CLargeParameterData* data) {
  if (data == nullptr) return false;
  const auto& tables = data->Entries();
  if (!std::all_of(tables.begin(), tables.end(), [](const auto* table) { return IsCarried(*table); })) return false;
  LargeParameterHeader header;
  header.recordCount = data->GetPropertyCount();
  return nvx::WriteWordTables(file, header, tables, RecordOf, WriteBlock);
}
