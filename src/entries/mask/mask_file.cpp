// The forms of the mask parameter list and the mask pattern table.
#include "core/form.h"
#include "entries/mask/mask_records.h"

#include <nvxprofile/mask.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

using nvx::MaskParameterHeader;
using nvx::MaskParameterRecord;
using nvx::MaskPatternHeader;
using nvx::MaskPatternRecord;

namespace {

using Parameters = std::vector<std::unique_ptr<CMaskParameterDataEntry>>;
using Patterns = std::vector<std::unique_ptr<CMaskPatternDataEntry>>;
using Sizes = std::vector<std::uint32_t>;

template <class Header>
Header HeaderOf(std::size_t recordCount) {
  Header header;
  header.recordCount = static_cast<std::uint32_t>(recordCount);
  return header;
}

// Calls take(record, offset) for each record with the right magic, until one gives false.
template <class Record, class Take>
bool ReadRecords(CNvxFile& file, std::uint32_t count, Take take) {
  nvx::RecordTable<Record> records;
  if (!records.Read(file, count, "mask records")) return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!nvx::HasConstants<Record>(records.BytesAt(i))) {
      nvx::PassOverAt(file, records.OffsetOf(i), "mask record: wrong magic, passed over");
    } else if (!take(records.At(i), records.OffsetOf(i))) {
      return false;
    }
  }
  return true;
}

enum class BlockMagic { kRight, kWrong, kCutShort };

BlockMagic ReadBlockMagic(CNvxFile& file, std::uint32_t magic) {
  std::uint8_t bytes[nvx::kMaskBlockMagicSize];
  if (!nvx::ReadExact(file, bytes, sizeof bytes)) {
    nvx::Refuse(file, "mask data block: cut short");
    return BlockMagic::kCutShort;
  }
  if (nvx::LoadLittle<std::uint32_t>(bytes) == magic) return BlockMagic::kRight;
  nvx::PassOver(file, "mask data block: wrong magic, left empty");
  return BlockMagic::kWrong;
}

// Reads `size` bytes and hands them to set(bytes).
template <class Set>
bool ReadBlock(CNvxFile& file, std::uint32_t size, Set set) {
  nvx::SharedBytes bytes;
  if (!nvx::TakeBytes(file, size, bytes)) return nvx::Refuse(file, "mask data block: size beyond the end");
  set(std::move(bytes));
  return true;
}

bool WriteBlock(CNvxFile& file, std::uint32_t magic, const std::uint8_t* data, std::uint32_t size) {
  return nvx::WriteMagic(file, magic) && nvx::WriteExact(file, data, size);
}

std::unique_ptr<CMaskParameterDataEntry> MakeParameter(const MaskParameterRecord& record) {
  auto entry = std::make_unique<CMaskParameterDataEntry>();
  entry->SetPass(record.pass);
  entry->SetSpecialColorsetCode(record.specialColorsetCode);
  entry->SetPrintMethod(record.printMethod);
  for (std::uint32_t i = 0; i < record.layerColorCount; ++i) entry->AddLayerColor(record.layerColors[i]);
  for (std::uint32_t i = 0; i < record.usePatternIDCount; ++i) entry->AddUsePatternID(record.usePatternIDs[i]);
  return entry;
}

MaskParameterRecord RecordOf(const CMaskParameterDataEntry& entry) {
  MaskParameterRecord record;
  record.pass = entry.GetPass();
  record.specialColorsetCode = entry.GetSpecialColorsetCode();
  record.printMethod = entry.GetPrintMethod();
  record.layerColorCount = entry.GetLayerColorCount();
  for (std::uint32_t i = 0; i < record.layerColorCount; ++i) {
    record.layerColors[i] = entry.GetLeyerColor(static_cast<int>(i));
  }
  record.dataSize = entry.GetParamDataSize();
  record.usePatternIDCount = entry.GetUsePatternIDCount();
  for (std::uint32_t i = 0; i < record.usePatternIDCount; ++i) {
    record.usePatternIDs[i] = entry.GetUsePatternID(static_cast<int>(i));
  }
  return record;
}

bool ReadParameters(CNvxFile& file, std::uint32_t count, Parameters& parameters, Sizes& sizes) {
  return ReadRecords<MaskParameterRecord>(file, count, [&](const MaskParameterRecord& record, std::uint64_t offset) {
    if (record.layerColorCount > CMaskParameterFile::kMostLayerColors)
      return nvx::RefuseAt(file, offset, "mask parameter record: more than 10 layer colours");
    if (record.usePatternIDCount > CMaskParameterFile::kMostUsePatternIDs)
      return nvx::RefuseAt(file, offset, "mask parameter record: more than 15 pattern IDs");
    parameters.push_back(MakeParameter(record));
    sizes.push_back(record.dataSize);
    return true;
  });
}

// A record whose block has a wrong magic leaves its size to the next one.
bool ReadParameterBlocks(CNvxFile& file, const Parameters& parameters, const Sizes& sizes) {
  auto size = sizes.begin();
  for (const auto& entry : parameters) {
    const BlockMagic magic = ReadBlockMagic(file, nvx::kMaskParameterBlockMagic);
    if (magic == BlockMagic::kCutShort) return false;
    if (magic == BlockMagic::kWrong) continue;
    if (!ReadBlock(file, *size++, [&](nvx::SharedBytes bytes) { entry->SetParamData(std::move(bytes)); })) return false;
  }
  return true;
}

bool ReadPatterns(CNvxFile& file, std::uint32_t count, Patterns& patterns, Sizes& sizes) {
  return ReadRecords<MaskPatternRecord>(file, count, [&](const MaskPatternRecord& record, std::uint64_t) {
    patterns.push_back(std::make_unique<CMaskPatternDataEntry>());
    patterns.back()->SetMaskPatternID(record.id);
    sizes.push_back(record.patternSize);
    return true;
  });
}

bool ReadPatternBlocks(CNvxFile& file, const Patterns& patterns, const Sizes& sizes) {
  auto size = sizes.begin();
  for (const auto& entry : patterns) {
    const std::uint32_t own = *size++;
    const BlockMagic magic = ReadBlockMagic(file, nvx::kMaskPatternBlockMagic);
    if (magic == BlockMagic::kCutShort) return false;
    if (magic == BlockMagic::kWrong) continue;
    if (!ReadBlock(file, own, [&](nvx::SharedBytes bytes) { entry->SetMaskPattern(std::move(bytes)); })) return false;
  }
  return true;
}

// Puts the patterns in ascending order of their IDs and drops those whose ID an earlier one or the table has.
void KeepNewPatterns(CNvxFile& file, const CMaskPatternData& table, Patterns& patterns) {
  const auto byID = [](const auto& a, const auto& b) { return a->GetMaskPatternID() < b->GetMaskPatternID(); };
  if (!std::is_sorted(patterns.begin(), patterns.end(), byID)) {
    nvx::Warn(file, file.GetPosition(), "mask pattern records: not in ascending order of IDs");
    std::stable_sort(patterns.begin(), patterns.end(), byID);
  }
  const auto sameID = [](const auto& a, const auto& b) { return a->GetMaskPatternID() == b->GetMaskPatternID(); };
  const std::size_t count = patterns.size();
  patterns.erase(std::unique(patterns.begin(), patterns.end(), sameID), patterns.end());
  if (table.GetEntryCount() != 0) {
    const auto taken = [&](const auto& p) {
      return table.GetEntry(static_cast<int>(p->GetMaskPatternID())) != nullptr;
    };
    patterns.erase(std::remove_if(patterns.begin(), patterns.end(), taken), patterns.end());
  }
  if (patterns.size() != count) nvx::PassOver(file, "mask pattern records: repeated IDs dropped");
}

}  // namespace

bool CMaskParameterFile::LoadHeader(CNvxFile& file) {
  MaskParameterHeader header;
  headerRead_ = nvx::ReadChecked(file, header);
  recordCount_ = header.recordCount;
  return headerRead_;
}

bool CMaskParameterFile::LoadFile(CNvxFile& file, CMaskParameterData* data) {
  if (data == nullptr || (!headerRead_ && !LoadHeader(file))) return false;
  Parameters parameters;
  Sizes sizes;
  if (!ReadParameters(file, recordCount_, parameters, sizes) || !ReadParameterBlocks(file, parameters, sizes))
    return false;
  data->Append(std::move(parameters));
  return true;
}

bool CMaskParameterFile::SaveFile(CNvxFile& file, CMaskParameterData* data) {
  if (data == nullptr || !CanSave(*data)) return false;
  const auto& entries = data->Entries();
  return nvx::WriteForm(file, HeaderOf<MaskParameterHeader>(entries.Count()), entries, RecordOf,
                        [&](const CMaskParameterDataEntry& entry) {
                          return WriteBlock(file, nvx::kMaskParameterBlockMagic, entry.GetParamDataBuffer(),
                                            entry.GetParamDataSize());
                        });
}

bool CMaskParameterFile::CanSave(const CMaskParameterData& data) {
  return std::all_of(data.Entries().begin(), data.Entries().end(), [](const CMaskParameterDataEntry* entry) {
    return entry->GetLayerColorCount() <= kMostLayerColors && entry->GetUsePatternIDCount() <= kMostUsePatternIDs;
  });
}

bool CMaskPatternFile::LoadHeader(CNvxFile& file) {
  MaskPatternHeader header;
  if (!nvx::ReadChecked(file, header)) return false;
  recordCount_ = header.recordCount;
  return true;
}

bool CMaskPatternFile::LoadFile(CNvxFile& file, CMaskPatternData* data) {
  if (data == nullptr || !LoadHeader(file)) return false;
  Patterns patterns;
  Sizes sizes;
  if (!ReadPatterns(file, recordCount_, patterns, sizes)) return false;
  KeepNewPatterns(file, *data, patterns);
  if (!ReadPatternBlocks(file, patterns, sizes)) return false;
  data->Merge(std::move(patterns));
  return true;
}

bool CMaskPatternFile::SaveFile(CNvxFile& file, CMaskPatternData* data) {
  if (data == nullptr) return false;
  const auto& entries = data->Entries();
  const auto recordOf = [](const CMaskPatternDataEntry& entry) {
    MaskPatternRecord record;
    record.id = entry.GetMaskPatternID();
    record.patternSize = entry.GetMaskPatternSize();
    return record;
  };
  return nvx::WriteForm(
      file, HeaderOf<MaskPatternHeader>(entries.Count()), entries, recordOf, [&](const CMaskPatternDataEntry& entry) {
        return WriteBlock(file, nvx::kMaskPatternBlockMagic, entry.GetMaskPatternBuffer(), entry.GetMaskPatternSize());
      });
}
