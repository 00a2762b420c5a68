// The last steps of all curve queries: find a curve in a set and hand out its samples, or say what is wrong with it.
#pragma once

#include "core/report.h"

#include <nvxprofile/curve.h>

#include <string_view>

namespace nvx {

// The wording of a family of queries.
struct CurveFailures {
  std::u16string_view noCurve;
  std::u16string_view noSamples;
  std::u16string_view badType;
};

// The first curve of the ink, with an extendInfo other than 0 the first one that has both; null if there is none.
inline CCurveDataEntry* FindCurve(const CCurveData& set, std::uint32_t ink, std::uint32_t extendInfo) {
  return set.Curves().First([=](const CCurveDataEntry& curve) {
    return curve.GetInkID() == ink && (extendInfo == 0 || curve.GetExtendInfo() == extendInfo);
  });
}

// The samples of a curve, with their size in bytes and their type. Null on failure; `fail(reason, text)` then stores
// the message. The size is that of the curve also if only its type is at fault.
template <class Fail>
void* SamplesOf(CCurveDataEntry* curve, const CurveFailures& texts, int& size, int& dataType, Fail fail) {
  constexpr std::uint32_t kLeastType = 1;
  constexpr std::uint32_t kGreatestType = 4;
  if (curve == nullptr) {
    fail(kReasonBadArgument, texts.noCurve);
    return nullptr;
  }
  size = static_cast<int>(curve->GetSize());
  if (size == 0) {
    fail(kReasonNotFound, texts.noSamples);
    return nullptr;
  }
  const std::uint32_t type = curve->GetDataType();
  if (type < kLeastType || type > kGreatestType) {
    fail(kReasonNotFound, texts.badType);
    return nullptr;
  }
  dataType = static_cast<int>(type);
  return curve->GetRefBuffer();
}

}  // namespace nvx
