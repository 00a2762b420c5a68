// Loading, and what the information record answers.
#include "core/report.h"
#include "core/text.h"
#include "entries/mask/mask_download_records.h"
#include "formats/detection.h"
#include "platform/locale.h"

#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <algorithm>

namespace {

constexpr const char* kSource = "ProfileAccess";

constexpr std::u16string_view kNoFormat = u"Profile: File Format Error (file name:%s)";

bool FailWithPath(CError* error, std::u16string_view format, std::u16string_view path, int line = __builtin_LINE()) {
  return nvx::Fail(error, nvx::kReasonNotFound, kSource, nvx::Message(format).Put(path), line);
}

// The bytes of the first output block of the mask download entry; null if there are none.
const std::uint8_t* OutputBlock(const CProfileData& profile) {
  const auto* const entry =
      dynamic_cast<const CMaskDownLoadEntry*>(profile.GetProfileDataEntryFromList(CProfileDataEntry::kMaskDownload));
  const tagWeftDatas* const block = entry != nullptr ? entry->GetWeftData(nvx::WeftOutputRecord::kBlockType) : nullptr;
  return block != nullptr ? block->Bytes : nullptr;
}

void SetOutputInformation(CProfileData& profile, _tagDeviceProfileInfo& info) {
  info.OutputFourthValue = -1;
  info.OutputCodeA = 255;
  info.OutputCodeB = 255;
  nvx::CopyText(info.OutputText, std::u16string_view());
  const std::uint8_t* const bytes = OutputBlock(profile);
  if (bytes == nullptr) return;
  const auto output = nvx::DecodeRecord<nvx::WeftOutputRecord>(bytes);
  info.OutputFourthValue = output.fourthValue;
  info.OutputCodeA = output.codeA;
  info.OutputCodeB = output.codeB;
  nvx::CopyText(info.OutputText, nvx::platform::AnsiToWide(nvx::FieldText(output.text)));
}

}  // namespace

CProfileAccess::CProfileAccess() = default;
CProfileAccess::~CProfileAccess() = default;

bool CProfileAccess::Init(const char16_t* path, CError* error) {
  profile_.reset();
  CNvxFile file;
  if (file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting)) return Load(file, error);
  return FailWithPath(error, kNoFormat, nvx::TextOf(path));
}

bool CProfileAccess::Load(CNvxFile& file, CError* error) {
  profile_.reset();
  auto profile = std::make_unique<CProfileData>();
  const nvx::LoadedFormat loaded = nvx::LoadProfile(file, *profile);
  if (!loaded.format) return FailWithPath(error, kNoFormat, file.GetPath());
  if (!loaded.isLoaded) {
    return FailWithPath(error, u"Profile: Load Error (file name:%s)", file.GetPath());
  }
  Serve(std::move(profile), loaded.format->GetMyFormat());
  return true;
}

void CProfileAccess::Serve(std::unique_ptr<CProfileData> profile, int format) {
  profile_ = std::move(profile);
  format_ = format;
  SetupProfileInfoStructure();
}

void CProfileAccess::SetupProfileInfoStructure() {
  _tagDeviceProfileInfo& info = *profile_->GetProfileInfo();
  SetOutputInformation(*profile_, info);
  CError ignored;
  std::int32_t waveForm = 0;
  if (GetWaveFormParam(waveForm, &ignored)) info.WaveFormParam = waveForm;
}

_tagDeviceProfileInfo* CProfileAccess::GetProfileInfo() { return profile_ ? profile_->GetProfileInfo() : nullptr; }

CProfileDataInfo* CProfileAccess::GetProfileInfoObject() {
  return profile_ ? profile_->GetProfileInfoObject() : nullptr;
}

bool CProfileAccess::IsICCRoot() { return profile_ && profile_->IsICCRoot(); }
bool CProfileAccess::IsGrayBalanceRoot() { return profile_ && profile_->IsGrayBalance(); }
bool CProfileAccess::IsV3Route() { return profile_ && profile_->IsV3(); }
bool CProfileAccess::IsSpecifiedRoute(std::uint32_t route) { return profile_ && profile_->IsSpecifiedRoute(route); }

bool CProfileAccess::GetOutputInfo(_tagOutputInfo* info) {
  if (info == nullptr || !profile_) return false;
  const _tagDeviceProfileInfo& from = *profile_->GetProfileInfo();
  std::copy_n(from.ModelCode, std::size(from.ModelCode), info->ModelCode);
  std::copy_n(from.ModelSubCode, std::size(from.ModelSubCode), info->ModelSubCode);
  std::copy_n(from.InternalCode, std::size(from.InternalCode), info->InternalCode);
  info->ScanResolution = from.ScanResolution;
  info->FeedResolution = from.FeedResolution;
  info->RenderingScan = from.RenderingScan;
  info->RenderingFeed = from.RenderingFeed;
  info->Expand = from.Expand;
  info->ColorsetCode = from.ColorsetCode;
  info->InkTypeCode = from.InkTypeCode;
  info->DotType = from.DotType;
  return true;
}

bool CProfileAccess::GetOutputResolution(std::uint32_t& scan, std::uint32_t& feed, std::uint32_t& third,
                                         std::uint32_t& fourth) {
  if (!profile_) return false;
  const _tagDeviceProfileInfo& info = *profile_->GetProfileInfo();
  scan = info.ScanResolution;
  feed = info.FeedResolution;
  third = info.OutputThirdValue;
  fourth = static_cast<std::uint32_t>(info.OutputFourthValue);
  return true;
}

bool CProfileAccess::GetRenderingResolution(std::uint32_t& scan, std::uint32_t& feed, std::uint32_t& expand) {
  if (!profile_) return false;
  const _tagDeviceProfileInfo& info = *profile_->GetProfileInfo();
  scan = info.RenderingScan;
  feed = info.RenderingFeed;
  expand = info.Expand;
  return true;
}
