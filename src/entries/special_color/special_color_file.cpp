#include "entries/special_color/curve_set_list.h"
#include "entries/special_color/special_color_records.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

using nvx::kSpecialColorTable;
using nvx::SpecialColorHeader;
using nvx::TwoArrayLengths;
using nvx::WordTableRecord;

namespace {

// What array 0 tells of the VD curves behind the arrays. They take no bytes if there are none.
struct CurveSets {
  std::uint32_t count = 0;
  std::uint32_t bytes = 0;
};

CurveSets CurveSetsOf(const nvx::WordArrays& arrays) {
  const std::int32_t count = arrays.Get(0, nvx::kCurveSetCountWord);
  if (count <= 0) return {};
  return {static_cast<std::uint32_t>(count), static_cast<std::uint32_t>(arrays.Get(0, nvx::kCurveSetBytesWord))};
}

// The same, from the block at `start` that is still to be read.
std::optional<CurveSets> FindCurveSets(CNvxFile& file, std::uint64_t start, std::uint32_t arrayWords) {
  nvx::WordArrays head(1);
  head.Resize(0, std::min<std::uint32_t>(arrayWords, nvx::kCurveSetBytesWord + 1));
  if (!nvx::SeekTo(file, start + nvx::kBlockMagicSize) || !nvx::ReadWords(file, head.Words(0))) return std::nullopt;
  return CurveSetsOf(head);
}

using FoundTable = nvx::FoundTable<CSpecialColorInfoDataEntry>;

// Adds the table that a record describes, without words, with its block at `start`; nothing for a broken rule and when
// memory runs out.
std::optional<FoundTable> AddTable(CNvxFile& file, CSpecialColorInfoData& data, const WordTableRecord& record,
                                   std::uint64_t start) {
  if (record.usedType != kSpecialColorTable) {
    nvx::PassOver(file, "record: a used type other than 1 makes no table");
    return FoundTable{};
  }
  const auto lengths = nvx::FindArrayLengths(file, start, record.dataSize);
  if (!lengths) return std::nullopt;
  const auto curveSets = FindCurveSets(file, start, lengths->first);
  if (!curveSets) return std::nullopt;
  const std::uint64_t size = lengths->BlockSize() + curveSets->bytes;
  if (!nvx::HoldsBlock(file, start, size)) {
    nvx::RefuseAt(file, start, "VD curves: byte count beyond the end");
    return std::nullopt;
  }
  const std::uint32_t sizes[] = {lengths->first, lengths->second};
  auto* const table = CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(record.usedType, sizes);
  if (!data.AddTail(table)) return std::nullopt;
  table->SetPatternCount(record.count);
  return FoundTable{table, size};
}

bool ReadArray(CNvxFile& file, std::uint32_t magic, std::span<std::int32_t> words) {
  if (!nvx::ReadMagic(file, magic)) return nvx::Refuse(file, "array: wrong magic");
  return nvx::ReadWords(file, words);
}

bool ReadTable(CNvxFile& file, CSpecialColorInfoDataEntry& table) {
  nvx::WordArrays& arrays = table.Arrays();
  if (!ReadArray(file, SpecialColorHeader::kArrayMagics.first, arrays.Words(0))) return false;
  if (!ReadArray(file, SpecialColorHeader::kArrayMagics.second, arrays.Words(1))) return false;
  const CurveSets curveSets = CurveSetsOf(arrays);
  return curveSets.count == 0 ||
         nvx::ReadCurveSets(file, curveSets.count, curveSets.bytes,
                            [&](std::unique_ptr<CCurveData> curves) { table.AddTailVD(curves.release()); });
}

bool IsCarried(const CSpecialColorInfoDataEntry& table) {
  if (table.GetUsedType() != kSpecialColorTable || !nvx::SaysItsLength(table.Arrays())) return false;
  std::uint64_t curveBytes = 0;
  for (CCurveData* const set : table.CurvesVD()) {
    const auto size = nvx::ListedCurveSetSize(*set);
    if (!size) return false;
    curveBytes += *size;
  }
  const CurveSets stated = CurveSetsOf(table.Arrays());
  return stated.count == table.CurvesVD().Count() && stated.bytes == curveBytes;
}

WordTableRecord RecordOf(CSpecialColorInfoDataEntry& table) {
  WordTableRecord record;
  record.magic = SpecialColorHeader::kRecordMagic;
  record.usedType = table.GetUsedType();
  record.dataSize = static_cast<std::uint32_t>(nvx::ArraysSize(table.Arrays()));
  record.count = table.GetPatternCount();
  return record;
}

bool WriteBlock(CNvxFile& file, const CSpecialColorInfoDataEntry& table) {
  if (!nvx::WriteTwoArrays(file, SpecialColorHeader::kArrayMagics, table.Arrays())) return false;
  for (CCurveData* const set : table.CurvesVD()) {
    if (!CCurveFile().SaveFile(file, set)) return false;
  }
  return true;
}

}  // namespace

CSpecialColorInfoFile* CSpecialColorInfoFile::CreateSpecialColorInfoFile(CNvxFile& file) {
  auto reader = std::make_unique<CSpecialColorInfoFile>();
  return reader->LoadHeader(file) ? reader.release() : nullptr;
}

CSpecialColorInfoFile::~CSpecialColorInfoFile() = default;

bool CSpecialColorInfoFile::LoadHeader(CNvxFile& file) {
  file.SeekToBegin();
  nvx::RecordBytes<SpecialColorHeader> bytes{};
  const bool isWhole = nvx::ReadExact(file, bytes.data(), nvx::kRecordSize<SpecialColorHeader>);
  const auto header = nvx::DecodeRecord<SpecialColorHeader>(bytes.data());
  profileColorType_ = header.profileColorType;
  recordCount_ = header.recordCount;
  headerRead_ = isWhole && nvx::CheckConstants<SpecialColorHeader>(file, 0, bytes.data());
  return isWhole ? headerRead_ : nvx::RefuseCutShort(file, SpecialColorHeader::kTitle);
}

bool CSpecialColorInfoFile::LoadFile(CNvxFile& file, CSpecialColorInfoData* data) {
  if (data == nullptr) return false;
  if (!headerRead_) LoadHeader(file);
  data->SetProfileColorType(profileColorType_);
  if (!headerRead_) return false;
  return nvx::ReadWordTables(
      file, recordCount_,
      [&](const WordTableRecord& record, std::uint64_t start) { return AddTable(file, *data, record, start); },
      [&](CSpecialColorInfoDataEntry& table) { return ReadTable(file, table); });
}

bool CSpecialColorInfoFile::SaveFile(CNvxFile& file, CSpecialColorInfoData* data) {
  if (data == nullptr) return false;
  const auto& tables = data->Entries();
  if (!std::all_of(tables.begin(), tables.end(), [](const auto* table) { return IsCarried(*table); })) return false;
  SpecialColorHeader header;
  header.profileColorType = data->GetProfileColorType();
  header.recordCount = data->GetPropertyCount();
  return nvx::WriteWordTables(file, header, tables, RecordOf, WriteBlock);
}
