// Which class belongs to an entry type: one row each.
#include <nvxprofile/calibration.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/large_parameter.h>
#include <nvxprofile/lut.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_entry.h>
#include <nvxprofile/special_color.h>

namespace {

using Make = CProfileDataEntry* (*)();

template <class Entry>
CProfileDataEntry* New() {
  return new Entry;
}

// The one class with two types.
CProfileDataEntry* NewSecondTarget() {
  CProfileDataEntry* const entry = New<CCalibrationTargetEntry>();
  entry->SetUsedType(CProfileDataEntry::kCalibrationTarget2);
  return entry;
}

struct Row {
  CProfileDataEntry::UsedType usedType;
  Make make;
};

constexpr Row kRows[] = {
    {CProfileDataEntry::kModel, New<CModelEntry>},
    {CProfileDataEntry::kInkLimit, New<CInkLimitEntry>},
    {CProfileDataEntry::kVariableInkLimit, New<CVariableInkLimitEntry>},
    {CProfileDataEntry::kVariable, New<CVariableEntry>},
    {CProfileDataEntry::kSeparateLight, New<CSeparateLightEntry>},
    {CProfileDataEntry::kLinearization, New<CLinearizationEntry>},
    {CProfileDataEntry::kGrayBalance, New<CGrayBalanceEntry>},
    {CProfileDataEntry::kSeparateChroma, New<CSeparateChromaEntry>},
    {CProfileDataEntry::kUcr, New<CUcrEntry>},
    {CProfileDataEntry::kIcm, New<CICMEntry>},
    {CProfileDataEntry::kInfo, New<CInfoEntry>},
    {CProfileDataEntry::kMediaProperty, New<CMediaPropertyEntry>},
    {CProfileDataEntry::kMultiInkLimit, New<CMultiInkLimitEntry>},
    {CProfileDataEntry::kReplaceProfile, New<CReplaceProfileEntry>},
    {CProfileDataEntry::kCalibrationHistory, New<CCalibrationHistoryEntry>},
    {CProfileDataEntry::kCalibrationContainer, New<CCalibrationContainerEntry>},
    {CProfileDataEntry::kCalibrationTarget, New<CCalibrationTargetEntry>},
    {CProfileDataEntry::kCalibrationInfo, New<CCalibrationInfoEntry>},
    {CProfileDataEntry::kCalibrationInklimit, New<CCalibrationInklimitEntry>},
    {CProfileDataEntry::kCalibrationLinearization, New<CCalibrationLinearizationEntry>},
    {CProfileDataEntry::kCalibrationGrayBalance, New<CCalibrationGrayBalanceEntry>},
    {CProfileDataEntry::kCalibrationTarget2, NewSecondTarget},
    {CProfileDataEntry::kMaskDownload, New<CMaskDownLoadEntry>},
    {CProfileDataEntry::kLargeParameter, New<CLargeParameterEntry>},
    {CProfileDataEntry::kMaskDownloadIncludePattern, New<CMaskDownloadIncludePatternEntry>},
    {CProfileDataEntry::kSpecialColorInfo, New<CSpecialColorInfoEntry>},
};

}  // namespace

CProfileDataEntry* CProfileDataEntry::CreateDataEntry(UsedType usedType) {
  for (const Row& row : kRows) {
    if (row.usedType == usedType) return row.make();
  }
  return nullptr;
}
