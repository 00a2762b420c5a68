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
#include <nvxprofile/entry_types.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/special_color.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using nvx::RouteTag;

namespace {

// A private tag for reading. Entries may keep its bytes as theirs: the tag is removed behind the load.
class PrivateTag {
 public:
  PrivateTag(const CICCProfile& profile, const char* name, nvx::Diagnosis* diagnosis)
      : bytes_(profile.ShareTag(name)),
        scope_(diagnosis, profile.GetTagOffset(name), [name] { return std::string(name); }) {
    stream_.SetDiagnosis(diagnosis);
  }

  // False for a tag that is missing or empty.
  bool IsPresent() { return !bytes_.IsEmpty() || nvx::Refuse(stream_, "private tag: missing"); }

  CNvxFile& Stream() { return stream_; }

 private:
  nvx::SharedBytes bytes_;
  nvx::SharedStream stream_{bytes_, nvx::SharedStream::Taking::kParts};
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
  nvx::ParseInto(diagnosis, entry);
}

// What was not read whole stays as its bytes: rebuilding it would lose the rest.
void RebuildAs16Bit(CProfileDataEntry& entry) {
  CProfileCurveEntry* const curves = entry.AsCurveEntry();
  if (curves != nullptr && entry.GetSize() != 0) {
    curves->TakeSamplesAs16Bit();
  } else if (entry.GetPayloadState() == nvx::PayloadState::kWhole) {
    entry.DataToBuffer();
  }
}

enum class Payload { kParse, kLeave };

// Makes one entry of all the bytes behind the opening and puts it on the tag's route. The entry that stands there
// afterwards; null for a tag without such bytes.
CProfileDataEntry* LoadRouteTag(PrivateTag& tag, CProfileData& data, std::uint32_t route,
                                CProfileDataEntry::UsedType usedType, Payload payload) {
  constexpr std::uint32_t kOpeningSize = nvx::kRecordSize<nvx::PrivateTagOpening>;
  if (!tag.IsPresent()) return nullptr;
  CNvxFile& stream = tag.Stream();
  if (stream.GetLength() <= kOpeningSize) {
    nvx::Refuse(stream, "private tag: nothing behind its opening");
    return nullptr;
  }
  std::unique_ptr<CProfileDataEntry> entry(CProfileDataEntry::CreateDataEntry(usedType));
  if (!entry) return nullptr;
  stream.Seek(kOpeningSize, nvx::kFromBegin);
  nvx::PayloadKeeper::Take(*entry, stream, stream.GetLength() - kOpeningSize);
  entry->SetComplete(true);
  if (payload == Payload::kParse) Parse(*entry, stream.GetDiagnosis());
  data.SetProfileDataEntry(entry.release(), route);
  return data.GetProfileDataEntry(route, usedType);
}

// The class of the entry in NVX5: one block, of type 5, is that of the masks with their patterns.
CProfileDataEntry::UsedType MaskEntryType(CNvxFile& stream) {
  nvx::PrivateTagOpening opening;
  nvx::WeftHeaderRecord header;
  nvx::WeftBlockHeader block;
  const bool withPatterns = nvx::ReadRecord(stream, opening) && nvx::ReadRecord(stream, header) &&
                            nvx::ReadRecord(stream, block) && header.header.DataCount == 1 && block.blockType == 5;
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
  SetMyFormat(nvx::kPrinterProfile);
  SetLoadHeaderSize(0);
}

CProfileFileQPFv3::~CProfileFileQPFv3() = default;
CProfileFileQPFv4::~CProfileFileQPFv4() = default;

bool CProfileFileQPFv3::LoadData(CNvxFile& file, CProfileData* data, bool) {
  CICCProfile profile;
  return data != nullptr && profile.OpenStream(file, nvx::kPrivateTags) && LoadProfile(profile, file, data);
}

bool CProfileFileQPFv3::LoadProfile(CICCProfile& profile, CNvxFile& file, CProfileData* data) {
  if (data == nullptr) return false;
  _tagDeviceProfileInfo& info = *data->GetProfileInfo();
  nvx::SelectBinaryView(info);
  diagnosis_ = file.GetDiagnosis();
  const bool loaded = LoadTags(profile, data);
  diagnosis_ = nullptr;
  if (passedOver_) file.NotePassedOver();
  const bool taken = loaded && TakeIccProfile(profile, *data);
  profile.Close();
  if (!taken) return false;
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
  PrivateTag tag(profile, nvx::kEntryTag, diagnosis_);
  if (!tag.IsPresent() || !LoadHeader(tag.Stream(), data) || !LoadEntries(tag.Stream(), data)) return false;
  passedOver_ = tag.Stream().HasPassedOver();
  if (const CProfileRoute* const route = data->GetProfileRoute(nvx::kRouteMain)) {
    for (CProfileDataEntry* const entry : route->Entries()) RebuildAs16Bit(*entry);
  }
  return true;
}

bool CProfileFileQPFv3::LoadVersion(CICCProfile& profile, CProfileData& scratch) {
  PrivateTag tag(profile, nvx::kEntryTag, nullptr);
  if (!tag.IsPresent() || !LoadHeader(tag.Stream(), &scratch)) return false;
  SetOffsetLoadPoint(tag.Stream().GetPosition());
  return CheckEntries(tag.Stream());
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
  PrivateTag tag(profile, nvx::kMediaTag, diagnosis_);
  return tag.IsPresent() && LoadMediaData(tag.Stream(), data);
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
  PrivateTag tag(profile, nvx::kReplaceProfileTag.name, diagnosis_);
  return LoadRouteTag(tag, *data, nvx::kReplaceProfileTag.route, CProfileDataEntry::kReplaceProfile, Payload::kLeave);
}

bool CProfileFileQPFv3::LoadNVX4Tag(CICCProfile& profile, CProfileData* data) {
  PrivateTag tag(profile, nvx::kCalibrationTag.name, diagnosis_);
  return LoadRouteTag(tag, *data, nvx::kCalibrationTag.route, CProfileDataEntry::kCalibrationHistory, Payload::kParse);
}

bool CProfileFileQPFv3::LoadNVX5Tag(CICCProfile& profile, CProfileData* data) {
  PrivateTag tag(profile, nvx::kMaskDownloadTag.name, diagnosis_);
  CProfileDataEntry* const entry =
      LoadRouteTag(tag, *data, nvx::kMaskDownloadTag.route, MaskEntryType(tag.Stream()), Payload::kParse);
  if (const auto* const mask = dynamic_cast<const CMaskDownLoadEntry*>(entry)) {
    const std::uint32_t* const blockType = mask->GetWeftUsedType();
    if (blockType != nullptr && *blockType == nvx::WeftOutputRecord::kBlockType)
      data->GetProfileInfo()->HasOutputBlock = true;
  }
  return entry != nullptr;
}

bool CProfileFileQPFv3::LoadNVX6Tag(CICCProfile& profile, CProfileData* data) {
  PrivateTag tag(profile, nvx::kLargeParameterTag.name, diagnosis_);
  return LoadRouteTag(tag, *data, nvx::kLargeParameterTag.route, CProfileDataEntry::kLargeParameter, Payload::kParse);
}

bool CProfileFileQPFv3::LoadNVX7Tag(CICCProfile& profile, CProfileData* data) {
  PrivateTag tag(profile, nvx::kSpecialColorTag.name, diagnosis_);
  CProfileDataEntry* const entry =
      LoadRouteTag(tag, *data, nvx::kSpecialColorTag.route, CProfileDataEntry::kSpecialColorInfo, Payload::kParse);
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
