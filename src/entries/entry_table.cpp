// The entry types: one row each.
#include "core/payload.h"
#include "entries/entry_fields.h"

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

template <class Class>
constexpr bool kHasFields = requires(FieldCodec& codec, Class& entry) {
  Describe(codec, entry);
};

template <class Class>
bool Visit(FieldCodec& codec, Entry& entry) {
  auto* const described = dynamic_cast<Class*>(&entry);
  if (described != nullptr) Describe(codec, *described);
  return described != nullptr;
}

template <class Class>
constexpr EntryType Row(Entry::UsedType usedType, Entry::FormatType formatType, bool isDisplayed, Place place,
                        std::string_view name, std::string_view className, Entry* (*create)() = New<Class>) {
  EntryType row = {usedType, formatType, isDisplayed, name, className, place.route, place.tag, create, nullptr};
  if constexpr (kHasFields<Class>) row.visit = Visit<Class>;
  return row;
}

// clang-format off
constexpr EntryType kTypes[] = {
    Row<CModelEntry>(Entry::kModel, Entry::kFormatModel, kHidden, kInTable, "model", "CModelEntry"),
    Row<CInkLimitEntry>(Entry::kInkLimit, Entry::kFormatCurve, kShown, kInTable, "ink-limit", "CInkLimitEntry"),
    Row<CVariableInkLimitEntry>(Entry::kVariableInkLimit, Entry::kFormatCurve, kShown, kInTable, "variable-ink-limit", "CVariableInkLimitEntry"),
    Row<CVariableEntry>(Entry::kVariable, Entry::kFormatCurve, kShown, kInTable, "variable", "CVariableEntry"),
    Row<CSeparateLightEntry>(Entry::kSeparateLight, Entry::kFormatCurve, kShown, kInTable, "light-ink", "CSeparateLightEntry"),
    Row<CLinearizationEntry>(Entry::kLinearization, Entry::kFormatCurve, kShown, kInTable, "linearization", "CLinearizationEntry"),
    Row<CGrayBalanceEntry>(Entry::kGrayBalance, Entry::kFormatCurve, kShown, kInTable, "gray-balance", "CGrayBalanceEntry"),
    Row<CSeparateChromaEntry>(Entry::kSeparateChroma, Entry::kFormatLut, kShown, kInTable, "chroma", "CSeparateChromaEntry"),
    Row<CUcrEntry>(Entry::kUcr, Entry::kFormatCurve, kShown, kInTable, "ucr", "CUcrEntry"),
    Row<CICMEntry>(Entry::kIcm, Entry::kFormatIcc, kShown, kInTable, "icc", "CICMEntry"),
    Row<CInfoEntry>(Entry::kInfo, Entry::kFormatInfo, kShown, kInTable, "info", "CInfoEntry"),
    Row<CMediaPropertyEntry>(Entry::kMediaProperty, Entry::kFormatKeyed, kShown, kInTable, "media-property", "CMediaPropertyEntry"),
    Row<CMultiInkLimitEntry>(Entry::kMultiInkLimit, Entry::kFormatCurve, kShown, kInTable, "multi-ink-limit", "CMultiInkLimitEntry"),
    Row<CReplaceProfileEntry>(Entry::kReplaceProfile, Entry::kFormatIcc, kShown, kReplaceProfile, "replacement-icc", "CReplaceProfileEntry"),
    Row<CCalibrationHistoryEntry>(Entry::kCalibrationHistory, Entry::kFormatContainer, kHidden, kCalibration, "calibration-history", "CCalibrationHistoryEntry"),
    Row<CCalibrationContainerEntry>(Entry::kCalibrationContainer, Entry::kFormatContainer, kShown, kInTable, "calibration", "CCalibrationContainerEntry"),
    Row<CCalibrationTargetEntry>(Entry::kCalibrationTarget, Entry::kFormatCalibrationTarget, kShown, kInTable, "calibration-target", "CCalibrationTargetEntry"),
    Row<CCalibrationInfoEntry>(Entry::kCalibrationInfo, Entry::kFormatCalibrationInfo, kShown, kInTable, "calibration-info", "CCalibrationInfoEntry"),
    Row<CCalibrationInklimitEntry>(Entry::kCalibrationInklimit, Entry::kFormatCurve, kShown, kInTable, "calibration-ink-limit", "CCalibrationInklimitEntry"),
    Row<CCalibrationLinearizationEntry>(Entry::kCalibrationLinearization, Entry::kFormatCurve, kShown, kInTable, "calibration-linearization", "CCalibrationLinearizationEntry"),
    Row<CCalibrationGrayBalanceEntry>(Entry::kCalibrationGrayBalance, Entry::kFormatCurve, kShown, kInTable, "calibration-gray-balance", "CCalibrationGrayBalanceEntry"),
    Row<CCalibrationTargetEntry>(Entry::kCalibrationTarget2, Entry::kFormatCalibrationTarget, kShown, kInTable, "calibration-target-2", "CCalibrationTargetEntry", NewSecondTarget),
    Row<CMaskDownLoadEntry>(Entry::kMaskDownload, Entry::kFormatMaskDownload, kShown, kMaskDownload, "mask-download", "CMaskDownLoadEntry"),
    Row<CLargeParameterEntry>(Entry::kLargeParameter, Entry::kFormatKeyed, kShown, kLargeParameter, "large-parameter", "CLargeParameterEntry"),
    Row<CMaskDownloadIncludePatternEntry>(Entry::kMaskDownloadIncludePattern, Entry::kFormatMaskDownloadIncludePattern, kHidden, kMaskDownload, "mask-patterns", "CMaskDownloadIncludePatternEntry"),
    Row<CSpecialColorInfoEntry>(Entry::kSpecialColorInfo, Entry::kFormatKeyed, kShown, kSpecialColor, "special-color", "CSpecialColorInfoEntry"),
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

bool TellFields(const CProfileDataEntry& entry, FieldSink& sink) {
  const EntryType* const type = FindEntryType(entry.GetUsedType());
  FieldCodec codec(sink);
  // With a sink nothing of the entry changes.
  return type != nullptr && type->visit != nullptr && type->visit(codec, const_cast<CProfileDataEntry&>(entry));
}

bool FillFields(CProfileDataEntry& entry, FieldSource& source) {
  const EntryType* const type = FindEntryType(entry.GetUsedType());
  if (type == nullptr || type->visit == nullptr) return false;
  FieldCodec codec(source);
  if (!PayloadKeeper::SaysAll(entry)) codec.Refuse("", "the entry has bytes that were not read whole");
  return type->visit(codec, entry);
}

}  // namespace nvx

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  const nvx::EntryType* const type = nvx::FindEntryType(usedType);
  return type != nullptr ? type->create() : nullptr;
}
