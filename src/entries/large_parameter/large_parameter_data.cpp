#include "entries/large_parameter/large_parameter_records.h"
#include "entries/pattern_table.h"

#include <nvxprofile/large_parameter.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

namespace {

// The pattern table in array 0 of used type 2.
constexpr std::size_t kHeadWords = 2;
constexpr std::size_t kConditions = 2;  // four words from here
constexpr std::size_t kConditionCount = 4;
constexpr std::int64_t kParamCount = 10;  // stored without the block's own two head words
constexpr std::int64_t kBlockHeadWords = 2;
constexpr std::int64_t kSplitCount = 11;
constexpr std::int64_t kSplitParamCounts = 12;

nvx::PatternTable PatternsOf(const nvx::WordArrays& arrays, std::int32_t patternCount) {
  return {arrays.Words(0), kHeadWords, patternCount};
}

}  // namespace

CLargeParameterDataEntry* CLargeParameterDataEntry::CreateLargeParameterDataEntry(std::uint32_t usedType,
                                                                                  const std::uint32_t* sizes) {
  std::unique_ptr<CLargeParameterDataEntry> entry;
  if (usedType == nvx::kFixedTable) entry = std::make_unique<CLargeParameterID001Entry>();
  if (usedType == nvx::kPatternTable) entry = std::make_unique<CLargeParameterID002Entry>();
  if (entry) entry->SetUsedType(usedType, sizes);
  return entry.release();
}

CLargeParameterDataEntry::~CLargeParameterDataEntry() = default;

void CLargeParameterDataEntry::SetUsedType(std::uint32_t, const std::uint32_t*) {}
void CLargeParameterDataEntry::SetUsedTypeID001toID002(const std::uint32_t*) {}
std::int32_t CLargeParameterDataEntry::GetParameter(std::int32_t, std::int32_t) { return 0; }
bool CLargeParameterDataEntry::SetParameter(std::int32_t, std::int32_t, std::int32_t) { return false; }
std::int32_t CLargeParameterDataEntry::GetPatternCount() { return patternCount_; }
void CLargeParameterDataEntry::SetPatternCount(std::int32_t) {}
std::int32_t CLargeParameterDataEntry::SeekPatternIndexByCondition(std::int32_t, std::int32_t, std::int32_t,
                                                                   std::int32_t) {
  return 0;
}
std::int32_t CLargeParameterDataEntry::SeekPatternParamCount(std::int32_t) { return 0; }
std::int32_t CLargeParameterDataEntry::SeekPatternSplitCount(std::int32_t) { return 0; }
std::int32_t CLargeParameterDataEntry::SeekPatternSplitParamCount(std::int32_t, std::int32_t) { return 0; }
std::int32_t* CLargeParameterDataEntry::GetRefBufferByPatternIndex(std::int32_t) { return nullptr; }

void CLargeParameterID001Entry::SetUsedType(std::uint32_t usedType, const std::uint32_t*) {
  usedType_ = usedType;
  arrays_.SetCount(1);
  arrays_.Resize(0, kWordCount);
  const auto words = arrays_.Words(0);
  std::fill(words.begin(), words.end(), 0);
  // A split opens with its number and two settings that are not set.
  for (std::int32_t split = 0; split < kSplitCount; ++split) {
    const std::int32_t first = kHeadWords + split * kSplitWords;
    arrays_.Set(0, first, split);
    arrays_.Set(0, first + 1, -1);
    arrays_.Set(0, first + 2, -1);
  }
}

void CLargeParameterID001Entry::SetUsedTypeID001toID002(const std::uint32_t* sizes) {
  usedType_ = nvx::kPatternTable;
  nvx::ShapeTwoArrays(arrays_, sizes);
}

std::int32_t CLargeParameterID001Entry::GetParameter(std::int32_t index, std::int32_t) { return arrays_.Get(0, index); }

bool CLargeParameterID001Entry::SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex) {
  return arrays_.Set(arrayIndex, index, value);
}

void CLargeParameterID001Entry::SetPatternCount(std::int32_t count) { patternCount_ = count; }

void CLargeParameterID002Entry::SetUsedType(std::uint32_t usedType, const std::uint32_t* sizes) {
  usedType_ = usedType;
  nvx::ShapeTwoArrays(arrays_, sizes);
}

std::int32_t CLargeParameterID002Entry::GetParameter(std::int32_t index, std::int32_t arrayIndex) {
  return arrays_.Get(arrayIndex, index);
}

bool CLargeParameterID002Entry::SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex) {
  return arrays_.Set(arrayIndex, index, value);
}

std::int32_t CLargeParameterID002Entry::GetPatternCount() { return patternCount_; }
void CLargeParameterID002Entry::SetPatternCount(std::int32_t count) { patternCount_ = count; }

std::int32_t CLargeParameterID002Entry::SeekPatternIndexByCondition(std::int32_t condition1, std::int32_t condition2,
                                                                    std::int32_t condition3, std::int32_t condition4) {
  const auto passes = [=](std::span<const std::int32_t> record) {
    const auto stored = record.subspan(kConditions, kConditionCount);
    return nvx::PassesValue(stored[0], condition1) && nvx::PassesValue(stored[1], condition2) &&
           nvx::PassesValue(stored[2], condition3) && nvx::PassesHundred(stored[3], condition4);
  };
  return PatternsOf(arrays_, patternCount_).FindFirst(kConditions + kConditionCount, passes);
}

std::int32_t CLargeParameterID002Entry::SeekPatternParamCount(std::int32_t pattern) {
  const nvx::PatternTable patterns = PatternsOf(arrays_, patternCount_);
  if (patterns.Record(pattern).size() <= kParamCount) return 0;
  const std::int64_t count = patterns.Word(pattern, kParamCount) + kBlockHeadWords;
  return count < 0 || count > std::numeric_limits<std::int32_t>::max() ? 0 : static_cast<std::int32_t>(count);
}

std::int32_t CLargeParameterID002Entry::SeekPatternSplitCount(std::int32_t pattern) {
  return PatternsOf(arrays_, patternCount_).Word(pattern, kSplitCount);
}

std::int32_t CLargeParameterID002Entry::SeekPatternSplitParamCount(std::int32_t pattern, std::int32_t split) {
  return split < 0 ? 0 : PatternsOf(arrays_, patternCount_).Word(pattern, kSplitParamCounts + split);
}

std::int32_t* CLargeParameterID002Entry::GetRefBufferByPatternIndex(std::int32_t pattern) {
  const auto store = arrays_.Words(1);
  if (pattern < 0 || pattern > PatternsOf(arrays_, patternCount_).Count()) return nullptr;
  std::int64_t offset = 0;
  for (std::int32_t before = 0; before < pattern; ++before) {
    const std::int32_t count = SeekPatternParamCount(before);
    offset += count;
    if (count < 0 || offset > static_cast<std::int64_t>(store.size())) return nullptr;
  }
  return store.data() + offset;
}

CLargeParameterData::~CLargeParameterData() = default;

void CLargeParameterData::DeleteContents() { DeleteLargeParameter(); }
void CLargeParameterData::DeleteLargeParameter() { entries_.Clear(); }

bool CLargeParameterData::AddTail(CLargeParameterDataEntry* entry) {
  if (entry != nullptr) entries_.Append(std::unique_ptr<CLargeParameterDataEntry>(entry));
  return entry != nullptr;
}

CLargeParameterDataEntry* CLargeParameterData::Find(std::uint32_t usedType) {
  return entries_.Find([usedType](const CLargeParameterDataEntry& entry) { return entry.GetUsedType() == usedType; });
}
