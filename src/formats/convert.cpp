// The conversion of a text-headed profile into one of the current generation.
#include "core/payload.h"
#include "core/text.h"
#include "formats/detection.h"
#include "formats/record_views.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

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

// Appends to the target a new curve for each curve of the source that passes; fill(curve, new curve) gives it its
// content, `limitKey` its ExtendInfo unless it is 0.
template <class Fill>
void AppendCurves(CProfileDataEntry& source, CProfileDataEntry& target, std::uint32_t limitKey, bool onlyVariable,
                  Fill fill) {
  auto* const from = dynamic_cast<CProfileCurveEntry*>(&source);
  auto* const to = dynamic_cast<CProfileCurveEntry*>(&target);
  if (from == nullptr || to == nullptr) return;
  from->BufferToData();
  if (!nvx::PayloadKeeper::SaysAll(*from)) return;
  to->BufferToData();
  CCurveData& made = *to->GetCurveData();
  for (CCurveDataEntry* const curve : std::as_const(*from).GetCurveData()->Curves()) {
    if (onlyVariable && curve->GetExtendInfo() != kVariableInfo) continue;
    std::unique_ptr<CCurveDataEntry> copy(CCurveDataEntry::CreateCurveDataEntry(CCurveDataEntry::kSamples16));
    fill(*curve, *copy);
    copy->SetExtendInfo(limitKey != 0 ? limitKey : curve->GetExtendInfo());
    made.AddTail(copy.release());
  }
  from->DataToBuffer();
  to->DataToBuffer();
}

// 256 samples from 0 to 65535.
void FillLine(CCurveDataEntry& curve) {
  std::array<std::uint16_t, 256> samples;
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::uint16_t>(257 * i);
  std::memcpy(curve.GetBuffer(sizeof samples), samples.data(), sizeof samples);
  curve.SetMax(65535);
  curve.SetMin(0);
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
  CNvxFile file;
  const bool isOpen = file.Open(path, nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting);
  const nvx::LoadedFormat loaded = isOpen ? nvx::LoadProfile(file, *v2_) : nvx::LoadedFormat();
  if (!loaded.isLoaded) {
    DeleteContents();
    return false;
  }
  nvx::CopyText(sourcePath_, nvx::TextOf(path));
  sourceFormat_ = loaded.format->GetMyFormat();
  return true;
}

void CConvertV2ToV3Profile::SetupModuleVersion(const char16_t* version) {
  nvx::CopyText(moduleVersion_, nvx::TextOf(version));
}

bool CConvertV2ToV3Profile::ConvertV2ToV3Profile(const _tagDBDeviceProfileInfo* database) {
  if (!v2_) return false;
  std::unique_ptr<CProfileData> former = std::exchange(v3_, std::make_unique<CProfileData>());
  v3_->CopyProfileInfo(*v2_);
  SetupV3HeaderString(database);
  const auto& entries = v2_->Entries();
  const bool whole =
      std::all_of(entries.begin(), entries.end(), [this](CProfileDataEntry* entry) { return ConvertEntry(*entry); });
  if (!whole) v3_ = std::move(former);
  return whole;
}

void CConvertV2ToV3Profile::SetupV3HeaderString(const _tagDBDeviceProfileInfo* database) {
  nvx::ConvertToBinaryView(*v3_);
  _tagDeviceProfileInfo& info = *v3_->GetProfileInfo();
  nvx::CopyText(info.Binary.StoredRevisionCode, kNewRevision);
  nvx::CopyText(info.Binary.CreateModule, std::u16string(kModule) + u" v" + moduleVersion_);
  nvx::CopyText(info.Binary.MakerText, kMaker);
  std::copy(std::begin(database->DatabaseKey), std::end(database->DatabaseKey), info.DatabaseKey);
  info.HalftoneCode = database->HalftoneCode;
  // The routes behind these stay behind, and a save would look for them.
  info.HasMaskDownload = info.HasOutputBlock = info.HasLargeParameter = info.HasSpecialColor = false;
}

bool CConvertV2ToV3Profile::ConvertEntry(CProfileDataEntry& source) {
  const auto rule =
      std::find_if(kRules.begin(), kRules.end(), [&](const Rule& r) { return r.source == source.GetUsedType(); });
  if (rule == kRules.end()) return true;
  std::unique_ptr<CProfileDataEntry> target(CProfileDataEntry::CreateDataEntry(rule->target));
  if (rule->method != Method::kCopy) source.BufferToData();
  bool whole = nvx::PayloadKeeper::SaysAll(source);
  switch (rule->method) {
    case Method::kCopy:
      whole = source.Copy(*target);
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
  if (whole) v3_->SetProfileDataEntry(target.release(), nvx::kRouteMain);
  return whole;
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

bool CConvertV2ToV3Profile::SaveV3Profile(const char16_t* path) {
  return v3_ && CProfileFileQPFv3().SaveData(path, v3_.get(), nvx::kRouteMain);
}

CProfileDataEntry* CConvertV2ToV3Profile::GetProfileDataEntry_V2(std::uint32_t usedType) {
  return v2_ ? v2_->GetProfileDataEntryFromList(usedType) : nullptr;
}

CProfileDataEntry* CConvertV2ToV3Profile::GetProfileDataEntry_V3(std::uint32_t usedType) {
  return v3_ ? v3_->GetProfileDataEntryFromList(usedType) : nullptr;
}
