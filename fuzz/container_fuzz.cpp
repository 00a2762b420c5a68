// The entry-table container: load, save, load again; both models hold the same.
#include "check.h"
#include "forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/profile_file.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using nvx::fuzz::Check;

bool Load(const std::uint8_t* bytes, std::size_t size, CProfileData& data, nvx::Diagnosis* diagnosis) {
  CNvxMemFile stream(const_cast<std::uint8_t*>(bytes), static_cast<std::uint32_t>(size));
  stream.SetDiagnosis(diagnosis);
  return CProfileFileQCT().LoadData(stream, &data, false);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::ContainerForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  CProfileData data;
  nvx::Diagnosis diagnosis;
  const bool loaded = Load(bytes, size, data, &diagnosis);
  Check(loaded || diagnosis.HasErrors());
  if (!loaded || !data.GetRouteStartPos()) return 0;
  bool more = false;
  const std::uint32_t route = data.GetNextRoute(more)->GetRouteType();

  CNvxMemFile saved;
  Check(CProfileFileQCT().SaveData(saved, &data, route));
  Check(saved.Position == CProfileFileQCT::GetSavedSize(data, route));
  CProfileData again;
  Check(Load(saved.Buffer, saved.Position, again, nullptr));
  Check(again.GetEntryCount(route) == data.GetEntryCount(route));
  more = data.GetEntryStartPos();
  while (more) {
    CProfileDataEntry* const entry = data.GetNextEntry(more);
    CProfileDataEntry* const copy = again.GetProfileDataEntryFromList(entry->GetUsedType());
    Check(copy != nullptr && copy->GetSize() == entry->GetSize());
    Check(entry->GetSize() == 0 || std::memcmp(copy->GetRefBuffer(), entry->GetRefBuffer(), entry->GetSize()) == 0);
  }
  std::free(saved.Buffer);
  return 0;
}
