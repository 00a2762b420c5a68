// A file of any format: its headers are summed up or refused, what loads has a summary, and an edit that changes
// nothing leaves every byte.
#include "check.h"
#include "forms.h"
#include "scratch_folder.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_edit.h>
#include <nvxprofile/profile_summary.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

using nvx::fuzz::Check;

void CheckSummary(const std::u16string& path) {
  nvx::ProfileSummary summary;
  nvx::Diagnosis diagnosis;
  const bool summarized = nvx::SummarizeProfile(path.c_str(), summary, &diagnosis);
  Check(summarized || diagnosis.HasErrors());
  CProfileAccess access;
  CError error;
  if (!access.Init(path.c_str(), &error)) return;
  Check(summarized && summary.format == access.GetProfileLoadFormat());
  const _tagDeviceProfileInfo& info = *summary.headers.GetProfileInfo();
  Check(info.UpdateTimeValue == access.GetProfileInfo()->UpdateTimeValue);
  Check(std::u16string(info.MediaName) == access.GetProfileInfo()->MediaName);
}

void CheckEdit(const std::u16string& path, const std::uint8_t* bytes, std::size_t size) {
  nvx::ProfileEdit edit;
  if (!edit.Open(path.c_str())) return;
  for (std::uint32_t type = 1; type <= 30; ++type) {
    const auto present = edit.EntryBytes(type);
    if (!present) continue;
    const std::vector<std::uint8_t> copy(present->begin(), present->end());
    Check(edit.SetEntryBytes(type, copy) || copy.empty());
    if (const auto header = edit.EntryHeader(type)) Check(edit.SetEntryHeader(type, *header));
  }
  if (edit.GetFormat() == 4) Check(edit.StoreHeaders());
  // A shared tag, or a Profile ID that is to be made right, is laid out anew.
  const std::vector<std::uint8_t>& image = edit.Image();
  if (edit.GetFormat() != 4) Check(image.size() == size && std::equal(image.begin(), image.end(), bytes));
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::QpfForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const nvx::fuzz::ScratchFolder folder;
  folder.WriteConversionTable();
  folder.Write("p", {bytes, size});
  CheckSummary(folder.WideFile("p"));
  CheckEdit(folder.WideFile("p"), bytes, size);
  return 0;
}
