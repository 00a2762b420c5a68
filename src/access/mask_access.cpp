// What the print path asks about print masks.
#include "core/report.h"
#include "core/stream.h"
#include "entries/mask/packed_mask.h"

#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <limits>
#include <vector>

using nvx::PackedMaskHeader;
using nvx::PackedPatternHeader;

namespace {

constexpr const char* kSource = "ProfileAccess";

constexpr std::uint32_t kMaskType = 3;
constexpr std::uint32_t kPrinterMaskType = 4;

// Records for any print method of a number of layer colours have this many times that number as their method.
constexpr std::uint32_t kMethodStep = 100;

bool FailNotFound(CError* error, const char16_t* comment, int line = __builtin_LINE()) {
  return nvx::Fail(error, nvx::kReasonNotFound, kSource, comment, line);
}

// The entry of a type; null, with the failure reported, if it is missing or of another class.
template <class Entry>
const Entry* FindEntry(const CProfileData& profile, std::uint32_t usedType, const char16_t* comment, CError* error) {
  const auto* const entry = dynamic_cast<const Entry*>(profile.GetProfileDataEntryFromList(usedType));
  if (entry == nullptr) FailNotFound(error, comment);
  return entry;
}

const CMaskDownLoadEntry* FindMaskEntry(const CProfileData& profile, CError* error) {
  return FindEntry<CMaskDownLoadEntry>(profile, CProfileDataEntry::kMaskDownload, u"Profile:Mask DownLoad Entry - none",
                                       error);
}

// The first block of a type, null with the failure reported; `comment` is for an entry without such a block.
const tagWeftDatas* FindBlock(const CProfileData& profile, std::uint32_t type, const char16_t* comment, CError* error) {
  const CMaskDownLoadEntry* const entry = FindMaskEntry(profile, error);
  if (entry == nullptr) return nullptr;
  const tagWeftDatas* const block = entry->GetWeftData(type);
  if (block == nullptr) FailNotFound(error, comment);
  return block;
}

bool CountsOf(const tagWeftDatas* block, std::uint32_t& valueCount, std::uint32_t& byteCount) {
  if (block == nullptr) return false;
  valueCount = block->ValueCount;
  byteCount = block->ByteCount;
  return true;
}

bool CopyBlock(const tagWeftDatas* block, std::uint32_t mostValues, std::uint32_t* values, std::uint8_t* bytes) {
  if (block == nullptr) return false;
  std::copy_n(block->Values, std::min(block->ValueCount, mostValues), values);
  std::copy_n(block->Bytes, block->ByteCount, bytes);
  return true;
}

using Patterns = std::vector<const CMaskPatternDataEntry*>;

// The patterns that a record uses, in its order; false if one is missing.
bool CollectPatterns(const CMaskParameterDataEntry& record, const CMaskPatternData& table, Patterns& patterns) {
  const auto count = static_cast<int>(record.GetUsePatternIDCount());
  patterns.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const CMaskPatternDataEntry* const pattern = table.GetEntry(static_cast<int>(record.GetUsePatternID(i)));
    if (pattern == nullptr) return false;
    patterns.push_back(pattern);
  }
  return true;
}

std::uint64_t PackedSize(const CMaskParameterDataEntry& record, const Patterns& patterns) {
  std::uint64_t size = std::uint64_t{nvx::kRecordSize<PackedMaskHeader>} + record.GetParamDataSize();
  for (const CMaskPatternDataEntry* pattern : patterns) {
    size += std::uint64_t{nvx::kRecordSize<PackedPatternHeader>} + pattern->GetMaskPatternSize();
  }
  return size;
}

// Sizes, counts and IDs lose what their fields have no room for.
void Pack(CNvxFile& file, const CMaskParameterDataEntry& record, const Patterns& patterns) {
  nvx::WriteRecord(file, PackedMaskHeader{static_cast<std::uint16_t>(record.GetParamDataSize()),
                                          static_cast<std::uint8_t>(patterns.size())});
  for (const CMaskPatternDataEntry* pattern : patterns) {
    nvx::WriteRecord(file, PackedPatternHeader{static_cast<std::uint16_t>(pattern->GetMaskPatternID()),
                                               pattern->GetMaskPatternSize()});
  }
  nvx::WriteExact(file, record.GetParamDataBuffer(), record.GetParamDataSize());
  for (const CMaskPatternDataEntry* pattern : patterns) {
    nvx::WriteExact(file, pattern->GetMaskPatternBuffer(), pattern->GetMaskPatternSize());
  }
}

}  // namespace

bool CProfileAccess::GetMaskParamCount(std::uint32_t& valueCount, std::uint32_t& byteCount, CError* error) {
  return profile_ && CountsOf(FindBlock(*profile_, kMaskType, u"Profile:Mask DownLoad Param Count - none", error),
                              valueCount, byteCount);
}

bool CProfileAccess::GetMaskParameter(std::uint32_t* values, std::uint8_t* bytes, CError* error) {
  return profile_ &&
         CopyBlock(FindBlock(*profile_, kMaskType, u"Profile:Mask DownLoad Param - none", error), 1, values, bytes);
}

bool CProfileAccess::GetPrinterMaskParamCount(std::uint32_t& valueCount, std::uint32_t& byteCount, CError* error) {
  return profile_ && CountsOf(FindBlock(*profile_, kPrinterMaskType, u"Profile:Printer Mask Param Count - none", error),
                              valueCount, byteCount);
}

bool CProfileAccess::GetPrinterMaskParameter(std::uint32_t* values, std::uint8_t* bytes, CError* error) {
  return profile_ && CopyBlock(FindBlock(*profile_, kPrinterMaskType, u"Profile:Printer Mask Param - none", error),
                               std::numeric_limits<std::uint32_t>::max(), values, bytes);
}

bool CProfileAccess::IsSupportWeftVersion(CError* error) {
  if (!profile_) return false;
  const CMaskDownLoadEntry* const entry = FindMaskEntry(*profile_, error);
  return entry != nullptr && entry->IsSuportVersion(entry->GetWeftHeader());
}

std::uint32_t CProfileAccess::GetMaskParameterAndPatternBuffer(std::uint8_t* buffer, std::uint32_t pass,
                                                               std::uint32_t specialColorsetCode,
                                                               std::uint32_t printMethod, std::uint32_t layerColorCount,
                                                               std::uint32_t* layerColors, CError* error) {
  if (!profile_) return 0;
  const auto* const entry = FindEntry<CMaskDownloadIncludePatternEntry>(
      *profile_, CProfileDataEntry::kMaskDownloadIncludePattern, u"Profile:There is no specified parameter.", error);
  if (entry == nullptr) return 0;

  const CMaskParameterData& records = *entry->GetMaskParameterData();
  const CMaskParameterDataEntry* record =
      records.GetEntry(pass, specialColorsetCode, printMethod, layerColorCount, layerColors);
  if (record == nullptr) {
    record = records.GetEntry(pass, specialColorsetCode, layerColorCount * kMethodStep, layerColorCount, layerColors);
  }
  if (record == nullptr) {
    FailNotFound(error, u"Profile:There is no specified condition.");
    return 0;
  }

  Patterns patterns;
  if (!CollectPatterns(*record, *entry->GetMaskPatternData(), patterns)) return 0;
  // A pattern that is used many times can make a form that no 32-bit size tells.
  const std::uint64_t size = PackedSize(*record, patterns);
  if (size > std::numeric_limits<std::uint32_t>::max()) return 0;
  if (buffer != nullptr) {
    CNvxMemFile file(buffer, static_cast<std::uint32_t>(size));
    Pack(file, *record, patterns);
  }
  return static_cast<std::uint32_t>(size);
}
