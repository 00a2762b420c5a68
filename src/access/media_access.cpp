// The codes of the information record, and the device settings of the medium.
#include "core/report.h"
#include "core/text.h"

#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <array>

namespace {

constexpr const char* kSource = "ProfileAccess";

using Parameters = std::array<std::int32_t, CMediaPropertyDataEntry::kParameterRoom>;

// A query of one block; the comment is for a profile that has no value of it.
struct BlockQuery {
  nvx::MediaBlock block;
  const char16_t* none;
};

int FailWithType(CError* error, std::u16string_view format, std::uint32_t usedType, int line = __builtin_LINE()) {
  nvx::Fail(error, nvx::kReasonNotFound, kSource, nvx::Message(format).Put(static_cast<std::int32_t>(usedType)), line);
  return -1;
}

// The set of an entry; null for one without.
const CMediaPropertyData* PropertiesOf(CProfileDataEntry& entry) {
  if (const auto* const media = dynamic_cast<const CMediaPropertyEntry*>(&entry)) return media->GetMediaPropertyData();
  return dynamic_cast<const CMediaPropertyData*>(entry.GetFormatData());
}

int CopyBlock(CProfileDataEntry* entry, std::uint32_t block, std::int32_t* values, CError* error) {
  if (entry == nullptr) {
    nvx::Fail(error, nvx::kReasonBadArgument, kSource, u"Profile:Parameter none(media property)");
    return -1;
  }
  const std::uint32_t usedType = entry->GetUsedType();
  const CMediaPropertyData* const data = PropertiesOf(*entry);
  if (data == nullptr) {
    return FailWithType(error, u"Profile: Entry format error(not media property). Entry type = %d", usedType);
  }
  CMediaPropertyDataEntry* const found = data->Entries().First(
      [block](const CMediaPropertyDataEntry& candidate) { return candidate.GetUsedType() == block; });
  if (found == nullptr) {
    return FailWithType(error, u"Profile: Media property format error(not media property). Entry type = %d", usedType);
  }
  std::copy_n(found->GetRefBuffer(), found->GetParameterMax(), values);
  return found->GetParameterMax();
}

// The number of values that went to `values`; 0 after a failure, which is reported unless there is no profile.
int ReadBlock(const CProfileData* profile, const BlockQuery& query, std::int32_t* values, CError* error) {
  if (profile == nullptr) return 0;
  CProfileDataEntry* const entry = profile->GetProfileDataEntryFromList(CProfileDataEntry::kMediaProperty);
  if (entry == nullptr) {
    nvx::Fail(error, nvx::kReasonNotFound, kSource, u"Profile:Media property entry - none");
    return 0;
  }
  const int count = CopyBlock(entry, query.block, values, error);
  if (count > 0) return count;
  nvx::Fail(error, nvx::kReasonNotFound, kSource, query.none);
  return 0;
}

bool ReadFirstValue(const CProfileData* profile, const BlockQuery& query, std::int32_t& value, CError* error) {
  Parameters parameters{};
  if (ReadBlock(profile, query, parameters.data(), error) == 0) return false;
  value = parameters[0];
  return true;
}

}  // namespace

int CProfileAccess::GetColorsetCode() { return profile_ ? profile_->GetProfileInfo()->ColorsetCode : -1; }
int CProfileAccess::GetInkTypeCode() { return profile_ ? profile_->GetProfileInfo()->InkTypeCode : -1; }
int CProfileAccess::GetInkMakerCode() { return profile_ ? profile_->GetProfileInfo()->InkMakerCode : -1; }
int CProfileAccess::GetInkVersion() { return profile_ ? profile_->GetProfileInfo()->InkVersion : -1; }
int CProfileAccess::GetDotType() { return profile_ ? profile_->GetProfileInfo()->DotType : -1; }

bool CProfileAccess::GetCreateModule(char16_t* module, CError*) {
  if (!IsV3Route()) return false;
  const _tagDeviceProfileInfo& info = *profile_->GetProfileInfo();
  // A text-headed profile may have that route as well; its header has no such field.
  const bool isText = info.LayoutNumber == nvx::kTextView;
  nvx::CopyText(module, std::size(info.Binary.CreateModule),
                isText ? std::u16string_view() : nvx::FieldText(info.Binary.CreateModule));
  return true;
}

int CProfileAccess::GetMediaPropertyData(CProfileDataEntry* entry, std::uint32_t usedType, std::int32_t* values,
                                         CError* error) {
  return CopyBlock(entry, usedType, values, error);
}

bool CProfileAccess::GetMediaCorrect(std::int32_t& value, CError* error) {
  return ReadFirstValue(profile_.get(), {nvx::kMediaCorrect, u"Profile:Media correct - none"}, value, error);
}

bool CProfileAccess::GetWaveParam(std::int32_t& value, CError* error) {
  value = 0;
  return ReadFirstValue(profile_.get(), {nvx::kMediaWave, u"Profile:Dot Size parameter - none"}, value, error);
}

bool CProfileAccess::GetMediaFeedSpeed(std::int32_t& value, CError* error) {
  value = -1;
  return ReadFirstValue(profile_.get(), {nvx::kMediaFeedSpeed, u"Profile:Media Feed parameter - none"}, value, error);
}

bool CProfileAccess::GetWaveFormParam(std::int32_t& value, CError* error) {
  value = 0;
  return ReadFirstValue(profile_.get(), {nvx::kMediaWaveForm, u"Profile:Wave Shape parameter - none"}, value, error);
}

bool CProfileAccess::GetUvModeRecommend(std::int32_t& value, CError* error) {
  value = -1;
  return ReadFirstValue(profile_.get(), {nvx::kMediaUvMode, u"Profile:UV Mode parameter - none"}, value, error);
}

bool CProfileAccess::GetTopBlowerParam(std::int32_t& value, CError* error) {
  value = 0;
  return ReadFirstValue(profile_.get(), {nvx::kMediaTopBlower, u"Profile:Top Blowers parameter - none"}, value, error);
}

bool CProfileAccess::GetFeedDirectionParam(std::int32_t& value, CError* error) {
  value = 0;
  return ReadFirstValue(profile_.get(), {nvx::kMediaFeedDirection, u"Profile:Feed Direction parameter - none"}, value,
                        error);
}

bool CProfileAccess::GetHeaterTemperature(std::int32_t& first, std::int32_t& second, std::int32_t& third,
                                          std::int32_t& fourth, CError* error) {
  const std::array<std::int32_t*, 4> results{&first, &second, &third, &fourth};
  for (std::int32_t* result : results) *result = -1;
  Parameters parameters{};
  const int count =
      ReadBlock(profile_.get(), {nvx::kMediaHeater, u"Profile:Heater parameter - none"}, parameters.data(), error);
  if (count == 0) return false;
  const auto filled = static_cast<std::size_t>(count);
  for (std::size_t i = 0; i < filled && filled <= results.size(); ++i) *results[i] = parameters[i];
  return true;
}

bool CProfileAccess::GetDotSize_SD(std::int32_t* sizes, std::int32_t& count, CError* error) {
  const int found = ReadBlock(profile_.get(), {nvx::kMediaDotSize, u"Profile:Wave parameter - none"}, sizes, error);
  if (found == 0) return false;
  count = found;
  return true;
}

bool CProfileAccess::GetPassDensity(std::int32_t& count, std::int32_t** values, CError* error) {
  count = -1;
  if (!profile_) return false;
  const int found = ReadBlock(profile_.get(), {nvx::kMediaPassDensity, u"Profile:Pass Density - none"}, *values, error);
  if (found == 0) return false;
  count = found;
  return true;
}

bool CProfileAccess::GetMaskParameters(std::int32_t& a, std::int32_t& b, std::int32_t& c, std::int32_t& d,
                                       std::int32_t& e, std::int32_t& f, std::int32_t& g, std::int32_t& h,
                                       CError* error) {
  Parameters parameters{};
  if (ReadBlock(profile_.get(), {nvx::kMediaPassMask, u"Profile:Pass Mask Parameters - none"}, parameters.data(),
                error) == 0) {
    return false;
  }
  const std::array<std::int32_t*, 8> results{&a, &b, &c, &d, &e, &f, &g, &h};
  for (std::size_t i = 0; i < results.size(); ++i) *results[i] = parameters[i];
  return true;
}
