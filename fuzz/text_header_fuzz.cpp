// A text-headed profile: load in both versions, save, load again; and its conversion. The format reads by path, so each
// input becomes a file, in memory where the system has a folder for that.
#include "check.h"
#include "forms.h"
#include "scratch_folder.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/profile_file_text.h>
#include <nvxprofile/text_conversion.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using nvx::fuzz::Check;

template <class Format>
bool Load(const std::u16string& path, CProfileData& data) {
  CNvxFile file;
  Check(file.Open(path.c_str(), nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting));
  nvx::Diagnosis diagnosis;
  file.SetDiagnosis(&diagnosis);
  const bool loaded = Format().LoadData(file, &data, false);
  Check(loaded || diagnosis.HasErrors());
  return loaded;
}

void CheckSame(CProfileData& data, CProfileData& again) {
  const _tagDeviceProfileInfo& a = *data.GetProfileInfo();
  const _tagDeviceProfileInfo& b = *again.GetProfileInfo();
  for (const auto field : {&_tagDeviceProfileInfo::TextView::Media_Label, &_tagDeviceProfileInfo::TextView::Media_Eng,
                           &_tagDeviceProfileInfo::TextView::Media_Jpn}) {
    Check(std::strcmp(a.Text.*field, b.Text.*field) == 0);
  }
  Check(std::strcmp(a.Text.Media_Code, b.Text.Media_Code) == 0 && std::strcmp(a.Text.Dpi_Code, b.Text.Dpi_Code) == 0);
  Check(a.DotType == b.DotType && a.HalftoneCode == b.HalftoneCode);
  bool more = data.GetEntryStartPos();
  while (more) {
    CProfileDataEntry* const entry = data.GetNextEntry(more);
    CProfileDataEntry* const copy = again.GetProfileDataEntryFromList(entry->GetUsedType());
    Check(copy != nullptr && copy->GetSize() == entry->GetSize());
    Check(entry->GetSize() == 0 || std::memcmp(copy->GetRefBuffer(), entry->GetRefBuffer(), entry->GetSize()) == 0);
  }
}

// A route of another number has a container without a name, which a load takes for a section to skip.
bool ComesBack(CProfileData& data) {
  if (!data.GetRouteStartPos()) return false;
  bool more = false;
  const std::uint32_t route = data.GetNextRoute(more)->GetRouteType();
  return !more && (route == nvx::kRouteIccRoot || route == nvx::kRouteGrayBalance);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::TextHeadedForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const nvx::fuzz::ScratchFolder folder;
  folder.WriteConversionTable();
  ::setenv("NVXPROFILE_CODEPAGE", size % 2 == 0 ? "932" : "1252", 1);
  ::setenv("LC_ALL", size % 3 == 0 ? "ja_JP" : "en_US", 1);
  folder.Write("a.qpf", {bytes, size});
  const std::u16string path = folder.WideFile("a.qpf");

  CProfileData second;
  Load<CProfileFileQPFv2>(path, second);
  CProfileData data;
  if (!Load<CProfileFileQPFv1>(path, data)) return 0;
  if (ComesBack(data)) {
    bool more = data.GetRouteStartPos();
    const std::u16string saved = folder.WideFile("b.qpf");
    Check(CProfileFileQPFv1().SaveData(saved.c_str(), &data, data.GetNextRoute(more)->GetRouteType()));
    CProfileData again;
    Check(Load<CProfileFileQPFv1>(saved, again));
    CheckSame(data, again);
  }
  CConvertV2ToV3Profile converter;
  if (!converter.ProfileLoad(path.c_str())) return 0;
  const _tagDBDeviceProfileInfo database;
  converter.SetupModuleVersion(u"1");
  converter.ConvertV2ToV3Profile(&database);
  converter.SaveV3Profile(folder.WideFile("c.icc").c_str());
  return 0;
}
