// Reading profiles of the current generation.
#include "core/payload.h"
#include "core/stream.h"
#include "core/text.h"
#include "entries/mask/mask_download_records.h"
#include "formats/qpf_tags.h"
#include "formats/record_views.h"
#include "platform/clock.h"
#include "platform/locale.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/special_color.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using nvx::RouteTag;

namespace {

// A private tag as a stream over its bytes in the working copy, for reading.
class TagStream : public CNvxMemFile {
 public:
  TagStream(const CICCProfile& profile, const char* tag, nvx::Diagnosis* diagnosis)
      : scope_(diagnosis, profile.GetTagOffset(tag), [tag] { return std::string(tag); }) {
    Buffer = const_cast<std::uint8_t*>(profile.GetRefTag(tag, Length));
    SetDiagnosis(diagnosis);
  }

  // False for a tag that is missing or empty.
  bool IsPresent() { return Buffer != nullptr || nvx::Refuse(*this, "private tag: missing"); }

 private:
  nvx::DiagnosisScope scope_;
};

// Number as text with leading zeros, cut to the field.
template <std::size_t N>
void SetNumberText(char16_t (&field)[N], std::int64_t number, std::size_t digits) {
  std::string text = std::to_string(number < 0 ? -number : number);
  const std::size_t width = number < 0 ? digits - 1 : digits;
  if (text.size() < width) text.insert(0, width - text.size(), '0');
  if (number < 0) text.insert(0, 1, '-');
  nvx::CopyText(field, nvx::Widen(text));
}

const tagMedia* FindMedia(const _tagDeviceProfileInfo::BinaryView& view, std::uint16_t language) {
  if (view.MediaInfo == nullptr) return nullptr;
  const tagMedia* const begin = view.MediaInfo;
  const tagMedia* const end = begin + view.MediaInfoCount;
  const tagMedia* const found =
      std::find_if(begin, end, [=](const tagMedia& media) { return media.Language == language; });
  return found != end && found->Name[0] != 0 ? found : nullptr;
}

void Parse(CProfileDataEntry& entry, nvx::Diagnosis* diagnosis) {
  const nvx::DiagnosisScope scope(diagnosis, nvx::kRecordSize<nvx::PrivateTagOpening>,
                                  [&] { return "entry " + std::to_string(entry.GetUsedType()); });
  entry.SetDiagnosis(diagnosis);
  entry.BufferToData();
  entry.SetDiagnosis(nullptr);
}

// What was not read whole stays as its bytes: rebuilding it would lose the rest.
void RebuildAs16Bit(CProfileDataEntry& entry) {
  auto* const curves = dynamic_cast<CProfileCurveEntry*>(&entry);
  if (curves != nullptr && entry.GetSize() != 0) {
    curves->TakeSamplesAs16Bit();
  } else if (entry.GetPayloadState() == nvx::PayloadState::kWhole) {
    entry.DataToBuffer();
  }
}

enum class Payload { kParse, kLeave };

// Makes one entry of all the bytes behind the opening and puts it on the tag's route. The entry that stands there
// afterwards; null for a tag without such bytes.
CProfileDataEntry* LoadRouteTag(TagStream& stream, CProfileData& data, const RouteTag& tag,
                                CProfileDataEntry::UsedType usedType, Payload payload) {
  constexpr std::uint32_t kOpeningSize = nvx::kRecordSize<nvx::PrivateTagOpening>;
  if (!stream.IsPresent()) return nullptr;
  if (stream.GetLength() <= kOpeningSize) {
    nvx::Refuse(stream, "private tag: nothing behind its opening");
    return nullptr;
  }
  std::unique_ptr<CProfileDataEntry> entry(CProfileDataEntry::CreateDataEntry(usedType));
  if (!entry) return nullptr;
  const std::uint32_t size = stream.GetLength() - kOpeningSize;
  std::memcpy(entry->GetBuffer(size), stream.Buffer + kOpeningSize, size);
  entry->SetComplete(true);
  if (payload == Payload::kParse) Parse(*entry, stream.GetDiagnosis());
  data.SetProfileDataEntry(entry.release(), tag.route);
  return data.GetProfileDataEntry(tag.route, usedType);
}

// The class of the entry in NVX5: one block, of type 5, is that of the masks with their patterns.
CProfileDataEntry::UsedType MaskEntryType(TagStream& stream) {
  nvx::PrivateTagOpening opening;
  nvx::WeftHeaderRecord header;
  nvx::WeftBlockHeader block;
  const bool withPatterns = nvx::ReadRecord(stream, opening) && nvx::ReadRecord(stream, header) &&
                            nvx::ReadRecord(stream, block) && header.header.DataCount == 1 && block.blockType == 5;
  stream.SeekToBegin();
  return withPatterns ? CProfileDataEntry::kMaskDownloadIncludePattern : CProfileDataEntry::kMaskDownload;
}

// Makes the profile as it stands now the ICC entry of the model; the working copy ends with that.
bool TakeIccProfile(CICCProfile& profile, CProfileData& data) {
  std::uint32_t size = 0;
  nvx::Block image(profile.DetachImage(size));
  if (!image) return false;
  CProfileDataEntry* entry = data.GetProfileDataEntryFromList(CProfileDataEntry::kIcm);
  if (entry == nullptr) {
    entry = new CICMEntry;
    entry->SetComplete(true);
    data.SetProfileDataEntry(entry, nvx::kRouteMain);
  }
  entry->AttachBuffer(image.release(), size);
  entry->BufferToData();
  return true;
}

}  // namespace

CProfileFileQPFv3::CProfileFileQPFv3() {
  SetMyFormat(4);
  SetLoadHeaderSize(0);
}

CProfileFileQPFv3::~CProfileFileQPFv3() = default;
CProfileFileQPFv4::~CProfileFileQPFv4() = default;

bool CProfileFileQPFv3::LoadData(CNvxFile& file, CProfileData* data, bool) {
  if (data == nullptr) return false;
  CICCProfile profile;
  if (!profile.OpenStream(file)) return false;
  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  nvx::SelectBinaryView(info);
  diagnosis_ = file.GetDiagnosis();
  const bool loaded = LoadTags(profile, data);
  diagnosis_ = nullptr;
  if (!loaded || !TakeIccProfile(profile, *data)) return false;
  file.GetFileName(info.FileName);
  return true;
}

bool CProfileFileQPFv3::LoadTags(CICCProfile& profile, CProfileData* data) {
  struct OptionalTag {
    const char* name;
    bool (CProfileFileQPFv3::*load)(CICCProfile&, CProfileData*);
    bool _tagDeviceProfileInfo::*flag;
  };
  static constexpr OptionalTag kOptionalTags[] = {
      {nvx::kReplaceProfileTag.name, &CProfileFileQPFv3::LoadNVX3Tag, nullptr},
      {nvx::kCalibrationTag.name, &CProfileFileQPFv3::LoadNVX4Tag, nullptr},
      {nvx::kMaskDownloadTag.name, &CProfileFileQPFv3::LoadNVX5Tag, &_tagDeviceProfileInfo::HasMaskDownload},
      {nvx::kLargeParameterTag.name, &CProfileFileQPFv3::LoadNVX6Tag, &_tagDeviceProfileInfo::HasLargeParameter},
      {nvx::kSpecialColorTag.name, &CProfileFileQPFv3::LoadNVX7Tag, &_tagDeviceProfileInfo::HasSpecialColor},
  };

  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  if (!LoadNVX1Tag(profile, data) || !LoadNVX2Tag(profile, data)) return false;
  SetupMediaFileToData(&info);
  for (const OptionalTag& tag : kOptionalTags) {
    std::uint32_t size = 0;
    profile.GetTag(tag.name, nullptr, size);
    if (size == 0) continue;
    if (!(this->*tag.load)(profile, data) || !profile.SetTag(tag.name, nullptr, 0)) return false;
    if (tag.flag != nullptr) info.*tag.flag = true;
  }
  return profile.SetTag(nvx::kEntryTag, nullptr, 0) && profile.SetTag(nvx::kMediaTag, nullptr, 0);
}

bool CProfileFileQPFv3::LoadHeader(CNvxFile& stream, CProfileData* data) {
  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  const std::int32_t separateWay = info.SeparateWayCode;
  nvx::HeaderBlockWords words;
  if (!nvx::ReadHeaderBlock(stream, info, words)) return nvx::Refuse(stream, "header block: cut short");
  if (separateWay != 0) info.SeparateWayCode = separateWay;
  info.ProfileMajorVersion = words.MajorVersion();
  info.ProfileMinorVersion = words.MinorVersion();
  SetLoadEntryCount(words.entryCount);
  if (info.Binary.StoredRevisionCode[0] == 0)
    nvx::CopyText(info.Binary.StoredRevisionCode, std::u16string_view(u"FFFF"));
  nvx::CopyText(info.RevisionCode, nvx::FieldText(info.Binary.StoredRevisionCode));
  SetPrinterFileToData(&info);
  ConvertTime64ToSYSTEMTIME(info.CreateTimeValue, &info.CreateTime);
  ConvertTime64ToSYSTEMTIME(info.UpdateTimeValue, &info.UpdateTime);
  return true;
}

bool CProfileFileQPFv3::LoadEntries(CNvxFile& stream, CProfileData* data) {
  SetLoadEntryToRoute(nvx::kRouteMain);
  SetOffsetLoadPoint(stream.GetPosition());
  return CProfileFileQCT::LoadEntries(stream, data);
}

bool CProfileFileQPFv3::LoadNVX1Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kEntryTag, diagnosis_);
  if (!stream.IsPresent() || !LoadHeader(stream, data) || !LoadEntries(stream, data)) return false;
  if (const CProfileRoute* const route = data->GetProfileRoute(nvx::kRouteMain)) {
    for (CProfileDataEntry* const entry : route->Entries()) RebuildAs16Bit(*entry);
  }
  return true;
}

bool CProfileFileQPFv3::LoadVersion(CICCProfile& profile, CProfileData& scratch) {
  TagStream stream(profile, nvx::kEntryTag, nullptr);
  if (!stream.IsPresent() || !LoadHeader(stream, &scratch)) return false;
  SetOffsetLoadPoint(stream.GetPosition());
  return CheckEntries(stream);
}

int CProfileFileQPFv3::GetProfileMajorVersion(CICCProfile& profile) {
  CProfileData scratch;
  return LoadVersion(profile, scratch) ? static_cast<int>(scratch.GetProfileInfo()->ProfileMajorVersion) : 0;
}

int CProfileFileQPFv3::GetProfileMinerVersion(CICCProfile& profile) {
  CProfileData scratch;
  return LoadVersion(profile, scratch) ? static_cast<int>(scratch.GetProfileInfo()->ProfileMinorVersion) : -1;
}

bool CProfileFileQPFv3::LoadNVX2Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kMediaTag, diagnosis_);
  return stream.IsPresent() && LoadMediaData(stream, data);
}

bool CProfileFileQPFv3::LoadMediaData(CNvxFile& stream, CProfileData* data) {
  nvx::MediaTableHeader header;
  if (!nvx::ReadRecord(stream, header)) return nvx::Refuse(stream, "media names: cut short");
  if (header.count == 0) return true;
  if (!nvx::Holds(stream, header.count, nvx::kRecordSize<nvx::MediaNameRecord>))
    return nvx::Refuse(stream, "media names: count beyond the end");
  std::vector<tagMedia> table(header.count);
  for (tagMedia& media : table) {
    nvx::MediaNameRecord record;
    if (!nvx::ReadRecord(stream, record)) return nvx::Refuse(stream, "media names: cut short");
    media = record.media;
  }
  data->SetMediaInfo(table);
  return true;
}

bool CProfileFileQPFv3::LoadNVX3Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kReplaceProfileTag.name, diagnosis_);
  return LoadRouteTag(stream, *data, nvx::kReplaceProfileTag, CProfileDataEntry::kReplaceProfile, Payload::kLeave);
}

bool CProfileFileQPFv3::LoadNVX4Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kCalibrationTag.name, diagnosis_);
  return LoadRouteTag(stream, *data, nvx::kCalibrationTag, CProfileDataEntry::kCalibrationHistory, Payload::kParse);
}

bool CProfileFileQPFv3::LoadNVX5Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kMaskDownloadTag.name, diagnosis_);
  CProfileDataEntry* const entry =
      LoadRouteTag(stream, *data, nvx::kMaskDownloadTag, MaskEntryType(stream), Payload::kParse);
  if (const auto* const mask = dynamic_cast<const CMaskDownLoadEntry*>(entry)) {
    const std::uint32_t* const blockType = mask->GetWeftUsedType();
    if (blockType != nullptr && *blockType == nvx::WeftOutputRecord::kBlockType)
      data->GetProfileInfo()->HasOutputBlock = true;
  }
  return entry != nullptr;
}

bool CProfileFileQPFv3::LoadNVX6Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kLargeParameterTag.name, diagnosis_);
  return LoadRouteTag(stream, *data, nvx::kLargeParameterTag, CProfileDataEntry::kLargeParameter, Payload::kParse);
}

bool CProfileFileQPFv3::LoadNVX7Tag(CICCProfile& profile, CProfileData* data) {
  TagStream stream(profile, nvx::kSpecialColorTag.name, diagnosis_);
  CProfileDataEntry* const entry =
      LoadRouteTag(stream, *data, nvx::kSpecialColorTag, CProfileDataEntry::kSpecialColorInfo, Payload::kParse);
  if (entry == nullptr) return false;
  const auto* const colors = dynamic_cast<const CSpecialColorInfoEntry*>(entry);
  if (colors != nullptr && colors->GetSpecialColorInfoData()->GetProfileColorType() == 1) {
    data->GetProfileInfo()->SeparateWayCode = 3;
  }
  return true;
}

void CProfileFileQPFv3::SetupMediaFileToData(_tagDeviceProfileInfo* info) {
  const auto& view = info->Binary;
  const tagMedia* media = FindMedia(view, nvx::platform::PrimaryLanguage());
  if (media == nullptr) media = FindMedia(view, nvx::platform::kLanguageEnglish);
  nvx::CopyText(info->MediaName,
                media != nullptr ? nvx::FieldText(media->Name) : nvx::FieldText(view.DefaultMediaName));
  SetNumberText(info->MediaCode, view.MediaNumber, 9);
}

void CProfileFileQPFv3::SetPrinterFileToData(_tagDeviceProfileInfo* info) {
  // The conversion is that of a signed number.
  const auto number = [](std::uint32_t value) { return static_cast<std::int32_t>(value); };
  SetNumberText(info->ModelCode, number(info->Binary.ModelNumber), 4);
  SetNumberText(info->ModelSubCode, number(info->Binary.ModelSubNumber), 2);
  SetNumberText(info->InternalCode, number(info->Binary.InternalNumber), 2);
}

void CProfileFileQPFv3::ConvertTime64ToSYSTEMTIME(std::int64_t time, _SYSTEMTIME* out) {
  *out = nvx::platform::LocalTime(time).value_or(SYSTEMTIME{});
}
