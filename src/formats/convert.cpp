// The conversion of a text-headed profile into one of the current generation.
#include "core/byte_order.h"
#include "core/text.h"
#include "formats/legacy_header.h"
#include "platform/locale.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/curve.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace platform = nvx::platform;

namespace {

using UsedType = CProfileDataEntry::UsedType;

constexpr std::uint32_t kSamplesInfo = 12;  // ExtendInfo of a curve with the samples of an ink limit
constexpr std::uint32_t kLineInfo = 14;     // and of a straight one
constexpr std::uint32_t kVariableInfo = 5;  // ExtendInfo of the curves that count for a variable ink limit
constexpr std::u16string_view kModule = u"ChromaDesk.exe";
constexpr std::u16string_view kMaker = u"Norvex";
constexpr std::u16string_view kNewRevision = u"0000";

enum class Method { kCopy, kLimit, kVariableLimit, kWiden, kStraighten };

struct Rule {
  UsedType source;
  UsedType target;
  Method method;
};

// What becomes of each entry. What is not named here is dropped.
constexpr std::array<Rule, 10> kRules{{
    {CProfileDataEntry::kModel, CProfileDataEntry::kModel, Method::kCopy},
    {CProfileDataEntry::kInkLimit, CProfileDataEntry::kMultiInkLimit, Method::kLimit},
    {CProfileDataEntry::kVariableInkLimit, CProfileDataEntry::kMultiInkLimit, Method::kVariableLimit},
    {CProfileDataEntry::kVariable, CProfileDataEntry::kVariable, Method::kWiden},
    {CProfileDataEntry::kSeparateLight, CProfileDataEntry::kSeparateLight, Method::kWiden},
    {CProfileDataEntry::kLinearization, CProfileDataEntry::kLinearization, Method::kStraighten},
    {CProfileDataEntry::kGrayBalance, CProfileDataEntry::kGrayBalance, Method::kStraighten},
    {CProfileDataEntry::kIcm, CProfileDataEntry::kIcm, Method::kCopy},
    {CProfileDataEntry::kInfo, CProfileDataEntry::kInfo, Method::kCopy},
    {CProfileDataEntry::kMediaProperty, CProfileDataEntry::kMediaProperty, Method::kCopy},
}};

// The entry's buffer is a form that its class reads.
bool Parses(CProfileDataEntry& entry) {
  const std::unique_ptr<CProfileDataEntry> probe(
      CProfileDataEntry::CreateDataEntry(static_cast<UsedType>(entry.GetUsedType())));
  if (!probe || entry.GetSize() == 0) return false;
  std::memcpy(probe->GetBuffer(entry.GetSize()), entry.GetRefBuffer(), entry.GetSize());
  return probe->BufferToData();
}

// CProfileDataEntry::Copy renews the buffer from the payload. Where the payload did not parse there is nothing to renew
// it from, and the bytes go over as they are.
void CopyEntry(CProfileDataEntry& source, CProfileDataEntry& target) {
  if (Parses(source)) return source.Copy(target);
  target.SetComplete(source.IsComplete());
  target.SetDisplay(source.IsDisplayEnable());
  target.SetOptionInfo(source.GetOptionInfo());
  target.SetLabelString(source.GetLabelString());
  if (source.GetSize() != 0) std::memcpy(target.GetBuffer(source.GetSize()), source.GetRefBuffer(), source.GetSize());
}

// Appends to the target a new curve for each curve of the source that passes; fill(curve, new curve) gives it its
// content, `limitKey` its ExtendInfo unless it is 0.
template <class Fill>
void AppendCurves(CProfileDataEntry& source, CProfileDataEntry& target, std::uint32_t limitKey, bool onlyVariable,
                  Fill fill) {
  auto* const from = dynamic_cast<CCurveData*>(source.GetFormatData());
  auto* const to = dynamic_cast<CCurveData*>(target.GetFormatData());
  if (from == nullptr || to == nullptr) return;
  const bool parsed = source.BufferToData();
  target.BufferToData();
  bool more = from->GetHeadPosition();
  while (more) {
    CCurveDataEntry& curve = *from->GetNext(more);
    if (onlyVariable && curve.GetExtendInfo() != kVariableInfo) continue;
    std::unique_ptr<CCurveDataEntry> made(CCurveDataEntry::CreateCurveDataEntry(CCurveDataEntry::kSamples16));
    fill(curve, *made);
    made->SetExtendInfo(limitKey != 0 ? limitKey : curve.GetExtendInfo());
    to->AddTail(made.release());
  }
  if (parsed) source.DataToBuffer();
  target.DataToBuffer();
}

// 256 samples from 0 to 65535.
void FillLine(CCurveDataEntry& curve) {
  std::array<std::uint16_t, 256> samples;
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::uint16_t>(257 * i);
  std::memcpy(curve.GetBuffer(sizeof samples), samples.data(), sizeof samples);
  curve.SetMax(65535);
  curve.SetMin(0);
}

tagMedia* CopyNames(CProfileData& owner, const tagMedia* names, std::uint32_t count) {
  if (names == nullptr) return nullptr;
  tagMedia* const copy = owner.CreateMediaInfoArray(static_cast<int>(count));
  std::copy_n(names, count, copy);
  return copy;
}

std::uint32_t Number(std::u16string_view text) { return static_cast<std::uint32_t>(nvx::LeadingNumber(text)); }

// What the record of a profile that has no binary view yields for one, without the media names.
_tagDeviceProfileInfo::BinaryView BinaryViewOf(const _tagDeviceProfileInfo& info) {
  _tagDeviceProfileInfo::BinaryView view{};
  view.ModelNumber = Number(nvx::FieldText(info.ModelCode));
  view.ModelSubNumber = Number(nvx::FieldText(info.ModelSubCode));
  view.InternalNumber = Number(nvx::FieldText(info.InternalCode));
  view.MediaNumber = info.LayoutNumber == 1
                         ? static_cast<std::uint32_t>(nvx::LeadingNumber(nvx::FieldText(info.Text.Media_Code)))
                         : Number(nvx::FieldText(info.MediaCode));
  return view;
}

// The text view makes room for the binary one, which starts with a Japanese and an English media name. A record with
// neither view has the one name that it shows.
void ReplaceTextView(CProfileData& data) {
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  const bool hasText = info.LayoutNumber == 1;
  const std::u16string shown(nvx::FieldText(info.MediaName));
  const std::u16string japanese = hasText ? platform::AnsiToWide(nvx::FieldText(info.Text.Media_Jpn)) : shown;
  const std::u16string english = hasText ? platform::AnsiToWide(nvx::FieldText(info.Text.Media_Eng)) : shown;
  _tagDeviceProfileInfo::BinaryView view = BinaryViewOf(info);
  nvx::CopyText(view.DefaultMediaName, english);
  view.MediaInfoCount = 2;
  view.MediaInfo = data.CreateMediaInfoArray(2);
  view.MediaInfo[0].Language = platform::kLanguageJapanese;
  nvx::CopyText(view.MediaInfo[0].Name, japanese);
  view.MediaInfo[1].Language = platform::kLanguageEnglish;
  nvx::CopyText(view.MediaInfo[1].Name, english);
  info.Text = {};
  info.Binary = view;
  info.LayoutNumber = 3;
}

}  // namespace

CConvertV2ToV3Profile::CConvertV2ToV3Profile() = default;
CConvertV2ToV3Profile::~CConvertV2ToV3Profile() = default;

void CConvertV2ToV3Profile::Initialize() {
  v2_ = std::make_unique<CProfileData>();
  v3_ = std::make_unique<CProfileData>();
}

void CConvertV2ToV3Profile::DeleteContents() {
  v2_.reset();
  v3_.reset();
}

bool CConvertV2ToV3Profile::ProfileLoad(const char16_t* path) {
  Initialize();
  const std::unique_ptr<CProfileFile> file(CProfileFile::CreateProfileFile(path, true));
  if (!file || !file->LoadData(path, v2_.get(), false)) {
    DeleteContents();
    return false;
  }
  nvx::CopyText(sourcePath_, nvx::TextOf(path));
  sourceFormat_ = file->GetMyFormat();
  return true;
}

void CConvertV2ToV3Profile::SetupModuleVersion(const char16_t* version) {
  nvx::CopyText(moduleVersion_, nvx::TextOf(version));
}

void CConvertV2ToV3Profile::ConvertV2ToV3Profile(const _tagDBDeviceProfileInfo* database) {
  if (!v2_) return;
  v3_ = std::make_unique<CProfileData>();
  _tagDeviceProfileInfo& info = *v3_->GetProfileInfo();
  info = *v2_->GetProfileInfo();
  if (info.LayoutNumber == 3) {
    const tagMedia* const names = std::exchange(info.Binary.MediaInfo, nullptr);
    info.Binary.MediaInfo = CopyNames(*v3_, names, info.Binary.MediaInfoCount);
  }
  SetupV3HeaderString(database);
  bool more = v2_->GetEntryStartPos();
  while (more) ConvertEntry(*v2_->GetNextEntry(more));
}

void CConvertV2ToV3Profile::SetupV3HeaderString(const _tagDBDeviceProfileInfo* database) {
  _tagDeviceProfileInfo& info = *v3_->GetProfileInfo();
  if (info.LayoutNumber != 3) ReplaceTextView(*v3_);
  nvx::CopyText(info.Binary.StoredRevisionCode, kNewRevision);
  nvx::CopyText(info.Binary.CreateModule, std::u16string(kModule) + u" v" + moduleVersion_);
  nvx::CopyText(info.Binary.MakerText, kMaker);
  std::copy(std::begin(database->DatabaseKey), std::end(database->DatabaseKey), info.DatabaseKey);
  info.HalftoneCode = database->HalftoneCode;
  // The routes behind these stay behind, and a save would look for them.
  info.HasMaskDownload = info.HasOutputBlock = info.HasLargeParameter = info.HasSpecialColor = false;
}

void CConvertV2ToV3Profile::ConvertEntry(CProfileDataEntry& source) {
  const auto rule =
      std::find_if(kRules.begin(), kRules.end(), [&](const Rule& r) { return r.source == source.GetUsedType(); });
  if (rule == kRules.end()) return;
  std::unique_ptr<CProfileDataEntry> target(CProfileDataEntry::CreateDataEntry(rule->target));
  switch (rule->method) {
    case Method::kCopy:
      CopyEntry(source, *target);
      break;
    case Method::kLimit:
    case Method::kVariableLimit: {
      const bool onlyVariable = rule->method == Method::kVariableLimit;
      Convert8bitTo16bit(&source, target.get(), true, onlyVariable);
      GetLineEntryCurve(&source, target.get(), true, onlyVariable);
      break;
    }
    case Method::kWiden:
      Convert8bitTo16bit(&source, target.get(), false, false);
      break;
    case Method::kStraighten:
      GetLineEntryCurve(&source, target.get(), false, false);
      break;
  }
  v3_->SetProfileDataEntry(target.release(), nvx::kRouteMain);
}

void CConvertV2ToV3Profile::Convert8bitTo16bit(CProfileDataEntry* source, CProfileDataEntry* target, bool setLimitKey,
                                               bool onlyVariable) {
  AppendCurves(*source, *target, setLimitKey ? kSamplesInfo : 0, onlyVariable,
               [](CCurveDataEntry& curve, CCurveDataEntry& made) { curve.Copy(made); });
}

void CConvertV2ToV3Profile::GetLineEntryCurve(CProfileDataEntry* source, CProfileDataEntry* target, bool setLimitKey,
                                              bool onlyVariable) {
  AppendCurves(*source, *target, setLimitKey ? kLineInfo : 0, onlyVariable,
               [](CCurveDataEntry& curve, CCurveDataEntry& made) {
                 made.SetInkID(curve.GetInkID());
                 made.SetInkName(curve.GetInkName());
                 made.SetDisplayRGB(curve.GetDisplayRGB());
                 made.SetSlotNo(curve.GetSlotNo());
                 FillLine(made);
               });
}

void CConvertV2ToV3Profile::SaveV3Profile(const char16_t* path) {
  if (v3_) CProfileFileQPFv3().SaveData(path, v3_.get(), nvx::kRouteMain);
}

CProfileDataEntry* CConvertV2ToV3Profile::GetProfileDataEntry_V2(std::uint32_t usedType) {
  return v2_ ? v2_->GetProfileDataEntryFromList(usedType) : nullptr;
}

CProfileDataEntry* CConvertV2ToV3Profile::GetProfileDataEntry_V3(std::uint32_t usedType) {
  return v3_ ? v3_->GetProfileDataEntryFromList(usedType) : nullptr;
}
