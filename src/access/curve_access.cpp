// The curves of a profile, and the merge of gray balance with linearization.
#include "access/curve_samples.h"
#include "core/payload.h"
#include "core/report.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr const char* kSource = "ProfileAccess";

constexpr nvx::CurveFailures kCurveFailures{
    u"Profile: Parameter error InkColorCode = %d, Entry type = %d",
    u"Profile: Specify entry size is 0.InkColorCode = %d,Entry type = %d",
    u"Profile: Parameter error.InkColorCode = %d,Entry type = %d",
};

// The numbers that GetDataType may give, by the bytes of one sample.
enum DataType : int { kBytes = 1, kWords = 2, kPassedOn = 3, kDoubleWords = 4 };

bool FailWithCurve(CError* error, std::uint32_t reason, std::u16string_view format, std::uint32_t ink,
                   std::uint32_t usedType, int line = __builtin_LINE()) {
  return nvx::Fail(error, reason, kSource,
                   nvx::Message(format).Put(static_cast<std::int32_t>(ink)).Put(static_cast<std::int32_t>(usedType)),
                   line);
}

// Profiles of the older generations name two inks by the code that they have in other colour sets.
std::uint32_t InkOfColorset(const _tagDeviceProfileInfo& info, std::uint32_t ink) {
  if (info.ProfileMajorVersion >= 3) return ink;
  if (ink == 10 && (info.ColorsetCode == 4 || info.ColorsetCode == 5)) return 1;
  if (ink == 14 && info.ColorsetCode == 5) return 5;
  return ink;
}

// Samples of one width in memory of any alignment.
template <class Sample>
struct Samples {
  const void* bytes = nullptr;
  std::size_t count = 0;

  Sample At(std::size_t index) const {
    Sample sample;
    std::memcpy(&sample, static_cast<const std::uint8_t*>(bytes) + index * sizeof sample, sizeof sample);
    return sample;
  }
  // The last sample stands for all beyond it.
  Sample AtOrLast(std::size_t index) const { return At(std::min(index, count - 1)); }
};

// out[i] = second[first[i]] for each i below `count`; an index beyond an array takes its last element.
template <class First, class Second>
void Merge(void* out, std::size_t count, const Samples<First>& first, const Samples<Second>& second) {
  if (first.count == 0 || second.count == 0) return;
  auto* const target = static_cast<std::uint8_t*>(out);
  for (std::size_t i = 0; i < count; ++i) {
    const Second sample = second.AtOrLast(first.AtOrLast(i));
    std::memcpy(target + i * sizeof sample, &sample, sizeof sample);
  }
}

template <class Sample>
void MergeArray(Sample* out, const Sample* first, const Sample* second, int count) {
  for (int i = 0; i < count; ++i) out[i] = second[first[i]];
}

struct CurveView {
  const void* bytes = nullptr;
  int size = 0;
  int dataType = 0;
};

// Calls use(samples) with the samples in their width; false for a DataType without one.
template <class Use>
bool WithSamples(const CurveView& curve, Use use) {
  const auto size = static_cast<std::size_t>(std::max(curve.size, 0));
  switch (curve.dataType) {
    case kBytes:
      use(Samples<std::uint8_t>{curve.bytes, size});
      return true;
    case kWords:
      use(Samples<std::uint16_t>{curve.bytes, size / 2});
      return true;
    case kDoubleWords:
      use(Samples<std::uint32_t>{curve.bytes, size / 4});
      return true;
    default:
      return false;
  }
}

bool MergeCurves(void* out, const CurveView& first, const CurveView& second) {
  bool merged = false;
  WithSamples(first, [&](const auto& indices) {
    merged = WithSamples(second, [&](const auto& values) { Merge(out, values.count, indices, values); });
  });
  return merged;
}

// The curve set of an entry as its buffer has it; null for an entry without one. What was parsed since the buffer came
// and has been in nobody's hands answers as it is, so that a repeated query writes to nothing.
const CCurveData* CurvesOf(CProfileDataEntry& entry) {
  if (nvx::PayloadKeeper::IsStale(entry)) entry.BufferToData();
  if (const CProfileCurveEntry* const curves = entry.AsCurveEntry()) return curves->GetCurveData();
  return dynamic_cast<const CCurveData*>(entry.GetFormatData());
}

constexpr const char16_t* kNoGrayBalance = u"Profile:Gray balance entry - none";
constexpr const char16_t* kNoLinearization = u"Profile:Linearization entry - none";

CProfileDataEntry* FindEntry(const CProfileData& profile, std::uint32_t usedType, const char16_t* missing,
                             CError* error) {
  CProfileDataEntry* const entry = profile.GetProfileDataEntryFromList(usedType);
  if (entry == nullptr) nvx::Fail(error, nvx::kReasonNotFound, kSource, missing);
  return entry;
}

}  // namespace

void* CProfileAccess::GetCurveOfType(std::uint32_t usedType, const char16_t* missing, std::uint32_t inkColorCode,
                                     std::uint32_t extendInfo, int& size, int& dataType, CError* error) {
  if (!profile_) return nullptr;
  CProfileDataEntry* const entry = FindEntry(*profile_, usedType, missing, error);
  if (entry == nullptr) return nullptr;
  return GetCurveDataBuffer(entry, inkColorCode, extendInfo, size, dataType, error);
}

void* CProfileAccess::GetInkLimit(std::uint32_t inkColorCode, int& size, int& dataType, CError* error) {
  return GetCurveOfType(CProfileDataEntry::kInkLimit, u"Profile:Ink limit entry - none", inkColorCode, 0, size,
                        dataType, error);
}

void* CProfileAccess::GetLinearization(std::uint32_t inkColorCode, int& size, int& dataType, CError* error) {
  return GetCurveOfType(CProfileDataEntry::kLinearization, kNoLinearization, inkColorCode, 0, size, dataType, error);
}

void* CProfileAccess::GetGrayBalance(std::uint32_t inkColorCode, int& size, int& dataType, CError* error) {
  return GetCurveOfType(CProfileDataEntry::kGrayBalance, kNoGrayBalance, inkColorCode, 0, size, dataType, error);
}

void* CProfileAccess::GetLightInk(std::uint32_t inkColorCode, int& size, int& dataType, CError* error) {
  return GetCurveOfType(CProfileDataEntry::kSeparateLight, u"Profile:Light ink entry - none", inkColorCode, 0, size,
                        dataType, error);
}

void* CProfileAccess::GetMultiInkLimit(std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size, int& dataType,
                                       CError* error) {
  return GetCurveOfType(CProfileDataEntry::kMultiInkLimit, u"Profile:Multi ink limit entry - none", inkColorCode,
                        extendInfo, size, dataType, error);
}

void* CProfileAccess::GetVariable(std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size, int& dataType,
                                  CError* error) {
  return GetCurveOfType(CProfileDataEntry::kVariable, u"Profile:Vriable curve entry - none", inkColorCode, extendInfo,
                        size, dataType, error);
}

void* CProfileAccess::GetVariableInkLimit(std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size,
                                          int& dataType, CError* error) {
  constexpr std::uint32_t kDefault = 5;
  return GetCurveOfType(CProfileDataEntry::kVariableInkLimit, u"Profile:Vriable ink limit entry - none", inkColorCode,
                        extendInfo == 0 ? kDefault : extendInfo, size, dataType, error);
}

void* CProfileAccess::GetUCR(int& size, int& dataType, CError* error) {
  return GetCurveOfType(CProfileDataEntry::kUcr, u"Profile:UCR entry - none", 0, 2, size, dataType, error);
}

void* CProfileAccess::GetBG(int& size, int& dataType, CError* error) {
  return GetCurveOfType(CProfileDataEntry::kUcr, u"Profile:UCR entry - none", 0, 1, size, dataType, error);
}

void* CProfileAccess::GetCurveDataBuffer(CProfileDataEntry* entry, std::uint32_t inkColorCode, std::uint32_t extendInfo,
                                         int& size, int& dataType, CError* error) {
  size = 0;
  dataType = 0;
  if (entry == nullptr) {
    nvx::Fail(error, nvx::kReasonNotFound, kSource, u"Profile: data none.");
    return nullptr;
  }
  const std::uint32_t usedType = entry->GetUsedType();
  const CCurveData* const curves = CurvesOf(*entry);
  if (curves == nullptr) {
    nvx::Fail(error, nvx::kReasonNotFound, kSource,
              nvx::Message(u"Profile: Entry format error(not curve data). Entry type = %d")
                  .Put(static_cast<std::int32_t>(usedType)));
    return nullptr;
  }
  const std::uint32_t ink = profile_ ? InkOfColorset(*profile_->GetProfileInfo(), inkColorCode) : inkColorCode;
  return nvx::SamplesOf(
      nvx::FindCurve(*curves, ink, extendInfo), kCurveFailures, size, dataType,
      [&](std::uint32_t reason, std::u16string_view text) { FailWithCurve(error, reason, text, ink, usedType); });
}

bool CProfileAccess::GetMergeGrayBalance(std::uint32_t inkColorCode, std::uint8_t* buffer, int& size, int& dataType,
                                         CError* error) {
  if (!profile_) return false;
  const auto find = [&](std::uint32_t usedType, const char16_t* missing) {
    CurveView curve;
    CProfileDataEntry* const entry = FindEntry(*profile_, usedType, missing, error);
    if (entry == nullptr) return curve;
    curve.bytes = GetCurveDataBuffer(entry, inkColorCode, 0, size, dataType, error);
    curve.size = size;
    curve.dataType = dataType;
    return curve;
  };
  const CurveView gray = find(CProfileDataEntry::kGrayBalance, kNoGrayBalance);
  if (gray.bytes == nullptr) return false;
  const CurveView linearization = find(CProfileDataEntry::kLinearization, kNoLinearization);
  if (linearization.bytes == nullptr) return false;
  return buffer == nullptr || MergeCurves(buffer, gray, linearization);
}

void CProfileAccess::MergeArrayBYTE(std::uint8_t* out, std::uint8_t* first, std::uint8_t* second, int count) {
  MergeArray(out, first, second, count);
}

void CProfileAccess::MergeArrayWORD(std::uint16_t* out, std::uint16_t* first, std::uint16_t* second, int count) {
  MergeArray(out, first, second, count);
}

void CProfileAccess::MergeArrayDWORD(std::uint32_t* out, std::uint32_t* first, std::uint32_t* second, int count) {
  MergeArray(out, first, second, count);
}
