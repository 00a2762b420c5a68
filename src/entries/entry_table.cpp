// The entry types: one row each.
#include <nvxprofile/calibration.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_data.h>
#include <nvxprofile/special_color.h>

#include <algorithm>
#include <iterator>

namespace nvx {
namespace {

using Entry = CProfileDataEntry;

template <class Class>
Entry* New() {
  return new Class;
}

// The one class with two types.
Entry* NewSecondTarget() {
  Entry* const entry = New<CCalibrationTargetEntry>();
  entry->SetUsedType(Entry::kCalibrationTarget2);
  return entry;
}

// Where a profile of the current generation has entries: in the entry table, or in a tag of their own.
struct Place {
  std::uint32_t route;
  const char* tag;
};
constexpr Place kInTable = {kRouteMain, "NVX1"};
constexpr Place kReplaceProfile = {kRouteReplaceProfile, "NVX3"};
constexpr Place kCalibration = {kRouteCalibration, "NVX4"};
constexpr Place kMaskDownload = {kRouteMaskDownload, "NVX5"};
constexpr Place kLargeParameter = {kRouteLargeParameter, "NVX6"};
constexpr Place kSpecialColor = {kRouteSpecialColor, "NVX7"};

constexpr bool kShown = true;
constexpr bool kHidden = false;

constexpr EntryType Row(Entry::UsedType usedType, Entry::FormatType formatType, bool isDisplayed, Place place,
                        std::string_view name, std::string_view className, Entry* (*create)()) {
  return {usedType, formatType, isDisplayed, name, className, place.route, place.tag, create};
}

// clang-format off
constexpr EntryType kTypes[] = {
    Row(Entry::kModel, Entry::kFormatModel, kHidden, kInTable, "model", "CModelEntry", New<CModelEntry>),
    Row(Entry::kInkLimit, Entry::kFormatCurve, kShown, kInTable, "ink-limit", "CInkLimitEntry", New<CInkLimitEntry>),
    Row(Entry::kVariableInkLimit, Entry::kFormatCurve, kShown, kInTable, "variable-ink-limit", "CVariableInkLimitEntry", New<CVariableInkLimitEntry>),
    Row(Entry::kVariable, Entry::kFormatCurve, kShown, kInTable, "variable", "CVariableEntry", New<CVariableEntry>),
    Row(Entry::kSeparateLight, Entry::kFormatCurve, kShown, kInTable, "light-ink", "CSeparateLightEntry", New<CSeparateLightEntry>),
    Row(Entry::kLinearization, Entry::kFormatCurve, kShown, kInTable, "linearization", "CLinearizationEntry", New<CLinearizationEntry>),
    Row(Entry::kGrayBalance, Entry::kFormatCurve, kShown, kInTable, "gray-balance", "CGrayBalanceEntry", New<CGrayBalanceEntry>),
    Row(Entry::kSeparateChroma, Entry::kFormatLut, kShown, kInTable, "chroma", "CSeparateChromaEntry", New<CSeparateChromaEntry>),
    Row(Entry::kUcr, Entry::kFormatCurve, kShown, kInTable, "ucr", "CUcrEntry", New<CUcrEntry>),
    Row(Entry::kIcm, Entry::kFormatIcc, kShown, kInTable, "icc", "CICMEntry", New<CICMEntry>),
    Row(Entry::kInfo, Entry::kFormatInfo, kShown, kInTable, "info", "CInfoEntry", New<CInfoEntry>),
    Row(Entry::kMediaProperty, Entry::kFormatKeyed, kShown, kInTable, "media-property", "CMediaPropertyEntry", New<CMediaPropertyEntry>),
    Row(Entry::kMultiInkLimit, Entry::kFormatCurve, kShown, kInTable, "multi-ink-limit", "CMultiInkLimitEntry", New<CMultiInkLimitEntry>),
    Row(Entry::kReplaceProfile, Entry::kFormatIcc, kShown, kReplaceProfile, "replacement-icc", "CReplaceProfileEntry", New<CReplaceProfileEntry>),
    Row(Entry::kCalibrationHistory, Entry::kFormatContainer, kHidden, kCalibration, "calibration-history", "CCalibrationHistoryEntry", New<CCalibrationHistoryEntry>),
    Row(Entry::kCalibrationContainer, Entry::kFormatContainer, kShown, kInTable, "calibration", "CCalibrationContainerEntry", New<CCalibrationContainerEntry>),
    Row(Entry::kCalibrationTarget, Entry::kFormatCalibrationTarget, kShown, kInTable, "calibration-target", "CCalibrationTargetEntry", New<CCalibrationTargetEntry>),
    Row(Entry::kCalibrationInfo, Entry::kFormatCalibrationInfo, kShown, kInTable, "calibration-info", "CCalibrationInfoEntry", New<CCalibrationInfoEntry>),
    Row(Entry::kCalibrationInklimit, Entry::kFormatCurve, kShown, kInTable, "calibration-ink-limit", "CCalibrationInklimitEntry", New<CCalibrationInklimitEntry>),
    Row(Entry::kCalibrationLinearization, Entry::kFormatCurve, kShown, kInTable, "calibration-linearization", "CCalibrationLinearizationEntry", New<CCalibrationLinearizationEntry>),
    Row(Entry::kCalibrationGrayBalance, Entry::kFormatCurve, kShown, kInTable, "calibration-gray-balance", "CCalibrationGrayBalanceEntry", New<CCalibrationGrayBalanceEntry>),
    Row(Entry::kCalibrationTarget2, Entry::kFormatCalibrationTarget, kShown, kInTable, "calibration-target-2", "CCalibrationTargetEntry", NewSecondTarget),
    Row(Entry::kMaskDownload, Entry::kFormatMaskDownload, kShown, kMaskDownload, "mask-download", "CMaskDownLoadEntry", New<CMaskDownLoadEntry>),
    Row(Entry::kLargeParameter, Entry::kFormatKeyed, kShown, kLargeParameter, "large-parameter", "CLargeParameterEntry", New<CLargeParameterEntry>),
    Row(Entry::kMaskDownloadIncludePattern, Entry::kFormatMaskDownloadIncludePattern, kHidden, kMaskDownload, "mask-patterns", "CMaskDownloadIncludePatternEntry", New<CMaskDownloadIncludePatternEntry>),
    Row(Entry::kSpecialColorInfo, Entry::kFormatKeyed, kShown, kSpecialColor, "special-color", "CSpecialColorInfoEntry", New<CSpecialColorInfoEntry>),
};
// clang-format on

template <class Is>
const EntryType* Find(Is is) {
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes), is);
  return found != std::end(kTypes) ? found : nullptr;
}

}  // namespace

std::span<const EntryType> EntryTypes() { return kTypes; }

const EntryType* FindEntryType(std::uint32_t usedType) {
  return Find([=](const EntryType& type) { return type.usedType == usedType; });
}

const EntryType* FindEntryType(std::string_view name) {
  return Find([=](const EntryType& type) { return type.name == name || type.className == name; });
}

}  // namespace nvx

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  const nvx::EntryType* const type = nvx::FindEntryType(usedType);
  return type != nullptr ? type->create() : nullptr;
}
