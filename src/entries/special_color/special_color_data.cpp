#include "entries/pattern_table.h"
#include "entries/special_color/special_color_records.h"

#include <nvxprofile/special_color.h>

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

namespace {

// The pattern table in array 0.
constexpr std::size_t kHeadWords = 4;
constexpr std::size_t kCondition1 = 2;
constexpr std::size_t kCondition2 = 3;
constexpr std::int64_t kSlotCount = 4;  // that of the first record holds for all
constexpr std::size_t kSlots = 5;

// The recommendations in array 1.
constexpr std::int64_t kLevel = 2;
constexpr std::int64_t kDensity = 3;
constexpr std::int64_t kCurveIndex = 4;

nvx::PatternTable RecommendationsOf(const nvx::WordArrays& arrays, std::int32_t patternCount) {
  return {arrays.Words(1), 0, patternCount};
}

// The colours in the order of the slots: ascending, those of value 0 behind all others, and 0 up to `slots`. More than
// `slots` values for a longer list.
std::vector<std::int32_t> ColorsInSlots(std::span<const std::int32_t> colors, std::size_t slots) {
  std::vector<std::int32_t> wanted(std::max(colors.size(), slots));
  std::copy(colors.begin(), colors.end(), wanted.begin());
  const auto end = wanted.begin() + static_cast<std::ptrdiff_t>(colors.size());
  std::sort(wanted.begin(), end, [](std::int32_t a, std::int32_t b) { return (a == 0) != (b == 0) ? b == 0 : a < b; });
  return wanted;
}

}  // namespace

CSpecialColorInfoDataEntry* CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(std::uint32_t usedType,
                                                                                        const std::uint32_t* sizes) {
  try {
    auto entry = std::make_unique<CSpecialColorInfoDataEntry>();
    entry->SetUsedType(usedType, sizes);
    return entry.release();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

CSpecialColorInfoDataEntry::~CSpecialColorInfoDataEntry() = default;

void CSpecialColorInfoDataEntry::SetUsedType(std::uint32_t usedType, const std::uint32_t* sizes) {
  usedType_ = usedType;
  nvx::ShapeTwoArrays(arrays_, sizes);
  DeleteContentsVD();
}

std::int32_t CSpecialColorInfoDataEntry::GetParameter(std::int32_t index, std::int32_t arrayIndex) {
  return arrays_.Get(arrayIndex, index);
}

bool CSpecialColorInfoDataEntry::SetParameter(std::int32_t index, std::int32_t value, std::int32_t arrayIndex) {
  return arrays_.Set(arrayIndex, index, value);
}

std::int32_t CSpecialColorInfoDataEntry::GetPatternCount() { return patternCount_; }
void CSpecialColorInfoDataEntry::SetPatternCount(std::int32_t count) { patternCount_ = count; }

std::int32_t CSpecialColorInfoDataEntry::SeekPatternIndexByCondition(std::int32_t condition1, std::int32_t condition2,
                                                                     std::int32_t colorCount,
                                                                     const std::int32_t* colors) {
  const nvx::PatternTable patterns(arrays_.Words(0), kHeadWords, patternCount_);
  const std::int32_t slotCount = patterns.Word(0, kSlotCount);
  if (patterns.Stride() < kSlots || slotCount < 0) return -1;
  const auto slots = static_cast<std::size_t>(slotCount);
  if (slots > patterns.Stride() - kSlots) return -1;

  const auto given = static_cast<std::size_t>(colors != nullptr ? std::max(colorCount, 0) : 0);
  const std::vector<std::int32_t> wanted = ColorsInSlots({colors, given}, slots);
  if (slots > 0 && wanted.size() > slots && wanted[slots] != 0) return -1;
  const auto passes = [&](std::span<const std::int32_t> record) {
    const auto stored = record.subspan(kSlots, slots);
    return nvx::PassesHundred(record[kCondition1], condition1) && nvx::PassesValue(record[kCondition2], condition2) &&
           std::equal(stored.begin(), stored.end(), wanted.begin(), nvx::PassesValue);
  };
  return patterns.FindFirst(kSlots + slots, passes);
}

std::int32_t CSpecialColorInfoDataEntry::SeekPatternRecommendLevel(std::int32_t pattern) {
  return RecommendationsOf(arrays_, patternCount_).Word(pattern, kLevel);
}

std::int32_t CSpecialColorInfoDataEntry::SeekPatternRecommendDensity(std::int32_t pattern) {
  return RecommendationsOf(arrays_, patternCount_).Word(pattern, kDensity);
}

std::int32_t CSpecialColorInfoDataEntry::SeekPatternVDCurveIndex(std::int32_t pattern) {
  return RecommendationsOf(arrays_, patternCount_).Word(pattern, kCurveIndex);
}

void CSpecialColorInfoDataEntry::DeleteContentsVD() { curves_.Clear(); }

bool CSpecialColorInfoDataEntry::AddTailVD(CCurveData* curves) {
  if (curves != nullptr) curves_.Append(std::unique_ptr<CCurveData>(curves));
  return curves != nullptr;
}

CSpecialColorInfoData::~CSpecialColorInfoData() = default;

void CSpecialColorInfoData::DeleteContents() { DeleteSpecialColorInfo(); }
void CSpecialColorInfoData::DeleteSpecialColorInfo() { entries_.Clear(); }

bool CSpecialColorInfoData::AddTail(CSpecialColorInfoDataEntry* entry) {
  if (entry != nullptr) entries_.Append(std::unique_ptr<CSpecialColorInfoDataEntry>(entry));
  return entry != nullptr;
}

CSpecialColorInfoDataEntry* CSpecialColorInfoData::Find(std::uint32_t usedType) {
  return entries_.Find([usedType](const CSpecialColorInfoDataEntry& entry) { return entry.GetUsedType() == usedType; });
}
