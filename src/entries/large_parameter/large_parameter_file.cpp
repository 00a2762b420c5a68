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

constexpr std::uint64_t kFixedBlockSize = nvx::kBlockMagicSize + nvx::kWordSize * CLargeParameterID001Entry::kWordCount;

// A table that has its shape but not its words yet, and where they stand.
struct Placed {
  CLargeParameterDataEntry* table;
  std::uint64_t start;
};

// The table that a record describes, without words, with its block at `start`; `size` becomes the block's size.
std::unique_ptr<CLargeParameterDataEntry> MakeTable(CNvxFile& file, const WordTableRecord& record, std::uint64_t start,
                                                    std::uint64_t& size) {
  std::uint32_t sizes[2] = {};
  if (record.usedType == kFixedTable) {
    size = kFixedBlockSize;
    if (!nvx::HoldsBlock(file, start, size)) {
      nvx::RefuseAt(file, start, "fixed table: cut short");
      return nullptr;
    }
  } else if (record.usedType == kPatternTable) {
    const auto lengths = nvx::FindArrayLengths(file, start, record.dataSize);
    if (!lengths) return nullptr;
    size = lengths->BlockSize();
    sizes[0] = lengths->first;
    sizes[1] = lengths->second;
  } else {
    nvx::Refuse(file, "record: unknown used type");
    return nullptr;
  }
  std::unique_ptr<CLargeParameterDataEntry> table(
      CLargeParameterDataEntry::CreateLargeParameterDataEntry(record.usedType, sizes));
  if (record.usedType != kFixedTable) table->SetPatternCount(record.count);
  return table;
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
  if (!nvx::ReadRecord(file, header)) return nvx::Refuse(file, "large parameter header: cut short");
  if (header.magic != LargeParameterHeader::kMagic) return nvx::Refuse(file, "large parameter header: wrong magic");
  recordCount_ = header.recordCount;
  headerRead_ = true;
  return true;
}

bool CLargeParameterFile::LoadFile(CNvxFile& file, CLargeParameterData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  const auto records = nvx::ReadWordTableRecords(file, recordCount_);
  if (!records) return false;

  std::vector<Placed> blocks;
  std::uint64_t end = file.GetPosition();
  for (const WordTableRecord& record : *records) {
    std::uint64_t size = 0;
    CLargeParameterDataEntry* const table = MakeTable(file, record, end, size).release();
    if (table == nullptr) return false;
    data->AddTail(table);
    blocks.push_back({table, end});
    end += size;
  }

  bool complete = true;
  for (const Placed& block : blocks) {
    complete = nvx::SeekTo(file, block.start) && ReadBlock(file, block.table->Arrays()) && complete;
  }
  return nvx::SeekTo(file, end) && complete;
}

bool CLargeParameterFile::SaveFile(CNvxFile& file, CLargeParameterData* data) {
  if (data == nullptr) return false;
  const auto& tables = data->Entries();
  if (!std::all_of(tables.begin(), tables.end(), [](const auto* table) { return IsCarried(*table); })) return false;
  LargeParameterHeader header;
  header.recordCount = data->GetPropertyCount();
  return nvx::WriteWordTables(file, header, tables, RecordOf, WriteBlock);
}
