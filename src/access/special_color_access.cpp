// What a special colour needs under a printing condition.
#include "access/curve_samples.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/special_color.h>

#include <algorithm>

namespace {

constexpr const char* kSource = "ProfileAccess";
constexpr std::uint32_t kTable = 1;

// Null without a profile too.
CSpecialColorInfoDataEntry* FindTable(const CProfileData* profile) {
  if (profile == nullptr) return nullptr;
  const auto* const entry = dynamic_cast<const CSpecialColorInfoEntry*>(
      profile->GetProfileDataEntryFromList(CProfileDataEntry::kSpecialColorInfo));
  if (entry == nullptr) return nullptr;
  return entry->GetSpecialColorInfoData()->Entries().First(
      [](const CSpecialColorInfoDataEntry& table) { return table.GetUsedType() == kTable; });
}

// The curve set of a number that counts from 1, or the last; null for an empty list.
CCurveData* CurveSetOf(const CSpecialColorInfoDataEntry& table, std::int32_t number) {
  const auto& sets = table.CurvesVD();
  if (number < 1 || sets.IsEmpty()) return nullptr;
  return sets.At(std::min(static_cast<std::size_t>(number), sets.Count()) - 1);
}

}  // namespace

bool CProfileAccess::GetSpecialColorRecommendDensity(std::int32_t& density, std::int32_t condition1,
                                                     std::int32_t condition2, std::int32_t inkColorCode, CError*) {
  if (!profile_) return false;
  density = -1;
  CSpecialColorInfoDataEntry* const table = FindTable(profile_.get());
  if (table == nullptr) return false;
  const std::int32_t pattern = table->SeekPatternIndexByCondition(condition1, condition2, 1, &inkColorCode);
  if (pattern == -1) return false;
  density = table->SeekPatternRecommendDensity(pattern);
  return true;
}

bool CProfileAccess::GetSpecialColorRecommendLevel(std::int32_t& level, std::int32_t condition1,
                                                   std::int32_t condition2, std::int32_t colorCount,
                                                   std::int32_t* colors, CError*) {
  if (!profile_) return false;
  level = -1;
  CSpecialColorInfoDataEntry* const table = FindTable(profile_.get());
  if (table == nullptr) return false;
  const std::int32_t pattern = table->SeekPatternIndexByCondition(condition1, condition2, colorCount, colors);
  if (pattern == -1) return false;
  // Stored levels count from 1. The subtraction must not overflow on a hostile word.
  level = static_cast<std::int32_t>(static_cast<std::uint32_t>(table->SeekPatternRecommendLevel(pattern)) - 1);
  return true;
}

void* CProfileAccess::GetSpecialColorVDCurve(std::int32_t& size, std::int32_t& dataType, std::int32_t extendInfo,
                                             std::int32_t condition1, std::int32_t condition2,
                                             std::int32_t inkColorCode, CError* error) {
  CSpecialColorInfoDataEntry* const table = FindTable(profile_.get());
  if (table == nullptr) return nullptr;
  const std::int32_t pattern = table->SeekPatternIndexByCondition(condition1, condition2, 1, &inkColorCode);
  if (pattern == -1) {
    size = 0;
    dataType = 0;
    return nullptr;
  }
  CCurveData* const curves = CurveSetOf(*table, table->SeekPatternVDCurveIndex(pattern));
  if (curves == nullptr) return nullptr;
  return GetSpecialColorVDCurveDataBuffer(curves, inkColorCode, extendInfo, size, dataType, error);
}

void* CProfileAccess::GetSpecialColorVDCurveDataBuffer(CCurveData* curves, std::int32_t inkColorCode,
                                                       std::int32_t extendInfo, std::int32_t& size,
                                                       std::int32_t& dataType, CError* error) {
  constexpr nvx::CurveFailures kTexts{u"Profile: Parameter error InkColorCode = %d",
                                      u"Profile: Specify entry size is 0.InkColorCode = %d",
                                      u"Profile: Parameter error.InkColorCode = %d"};
  if (!profile_) return nullptr;
  size = 0;
  dataType = 0;
  CCurveDataEntry* const curve = curves != nullptr ? nvx::FindCurve(*curves, static_cast<std::uint32_t>(inkColorCode),
                                                                    static_cast<std::uint32_t>(extendInfo))
                                                   : nullptr;
  return nvx::SamplesOf(curve, kTexts, size, dataType, [&](std::uint32_t reason, std::u16string_view text) {
    nvx::Fail(error, reason, kSource, nvx::Message(text).Put(inkColorCode));
  });
}
