#include "access/diagnose.h"

#include "access/curve_samples.h"
#include "core/stream.h"
#include "formats/detection.h"
#include "icc/icc_directory.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/profile_data.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_text.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace nvx {
namespace {

bool StartsAsTextHeader(CNvxFile& file) {
  constexpr std::string_view kStart = "Printer_Label:";
  std::array<char, kStart.size()> bytes{};
  file.SeekToBegin();
  const bool read = ReadExact(file, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  file.SeekToBegin();
  return read && std::equal(bytes.begin(), bytes.end(), kStart.begin());
}

// A file that no format takes: the format that it comes closest to says why.
void ExplainUnknown(CNvxFile& file) {
  if (!StartsAsTextHeader(file)) {
    IccDirectory directory;
    ReadIccDirectory(file, directory);
    return;
  }
  CProfileData scratch;
  if (CProfileFileQPFv1().LoadData(file, &scratch, true)) {
    RefuseAt(file, 0, "text header: ProfileVersion_Code is neither 1 nor 2");
  }
}

void Suspect(Diagnosis& diagnosis, std::string_view rule) { diagnosis.Report(Severity::kWarning, 0, rule); }

void CheckCurves(const CCurveData& curves, Diagnosis& diagnosis) {
  std::set<std::pair<std::uint32_t, std::uint32_t>> seen;
  for (CCurveDataEntry* const curve : curves.Curves()) {
    const std::string name = "ink " + std::to_string(curve->GetInkID());
    if (curve->GetSize() == 0) Suspect(diagnosis, name + ": curve without samples");
    if (curve->GetDataType() == CCurveDataEntry::kSamples16 && curve->GetSize() % 2 != 0) {
      Suspect(diagnosis, name + ": odd number of bytes in 16-bit samples");
    }
    if (!seen.emplace(curve->GetInkID(), curve->GetExtendInfo()).second) {
      Suspect(diagnosis, name + ": two curves of one ink and ExtendInfo, of which the second is never found");
    }
  }
}

const CCurveData* CurvesOf(const CProfileDataEntry* entry) {
  const auto* const curves = dynamic_cast<const CProfileCurveEntry*>(entry);
  return curves != nullptr ? curves->GetCurveData() : nullptr;
}

// The merge looks each gray balance sample up in the linearization of the same ink.
void CheckMerge(const CProfileData& data, Diagnosis& diagnosis) {
  const CCurveData* const gray = CurvesOf(data.GetProfileDataEntryFromList(CProfileDataEntry::kGrayBalance));
  const CCurveData* const linearization = CurvesOf(data.GetProfileDataEntryFromList(CProfileDataEntry::kLinearization));
  if (gray == nullptr || linearization == nullptr) return;
  for (CCurveDataEntry* const first : gray->Curves()) {
    CCurveDataEntry* const second = FindCurve(*linearization, first->GetInkID(), 0);
    if (second != nullptr && (first->GetDataType() != second->GetDataType() || first->GetSize() != second->GetSize())) {
      Suspect(diagnosis, "gray balance and linearization of ink " + std::to_string(first->GetInkID()) +
                             " differ in sample width or number");
    }
  }
}

void CheckModel(CProfileData& data, Diagnosis& diagnosis) {
  const _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  if (info.LayoutNumber != 0 && !data.GetProfileInfoObject()->IsKnownVersion()) {
    Suspect(diagnosis, "profile version is none of the known ones");
  }
  if (info.LayoutNumber != 0 && data.GetProfileDataEntryFromList(CProfileDataEntry::kIcm) == nullptr) {
    Suspect(diagnosis, "no ICC profile entry");
  }
  for (const CProfileDataEntry* const entry : data.Entries()) {
    const DiagnosisScope scope(&diagnosis, 0, [&] { return "entry " + std::to_string(entry->GetUsedType()); });
    if (const CCurveData* const curves = CurvesOf(entry)) CheckCurves(*curves, diagnosis);
  }
  CheckMerge(data, diagnosis);
}

}  // namespace

bool DiagnoseProfile(const char16_t* path, Diagnosis& diagnosis) {
  CNvxFile file;
  file.SetDiagnosis(&diagnosis);
  if (!file.Open(path, kGenericRead, kShareRead, kOpenExisting)) return RefuseAt(file, 0, "file: cannot be opened");
  return DiagnoseProfile(file, diagnosis);
}

bool DiagnoseProfile(CNvxFile& file, Diagnosis& diagnosis) {
  file.SetDiagnosis(&diagnosis);
  CProfileData data;
  const LoadedFormat loaded = LoadProfile(file, data);
  if (!loaded.format && !diagnosis.HasErrors()) {
    ExplainUnknown(file);
    if (!diagnosis.HasErrors()) RefuseAt(file, 0, "file: of no known format");
  }
  if (!loaded.isLoaded) {
    return diagnosis.HasErrors() ? false : RefuseAt(file, 0, "profile: does not load");
  }
  CheckModel(data, diagnosis);
  return true;
}

}  // namespace nvx
