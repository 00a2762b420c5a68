// A profile of the current generation: load, ask everything, save, load again; both models hold the same.
#include "check.h"
#include "forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/profile_file_qpf.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using nvx::fuzz::Check;

constexpr std::uint32_t kFlags = nvx::kSaveReplaceProfile | nvx::kSaveCalibration;

bool Load(const std::uint8_t* bytes, std::size_t size, CProfileData& data, nvx::Diagnosis* diagnosis) {
  CNvxMemFile stream(const_cast<std::uint8_t*>(bytes), static_cast<std::uint32_t>(size));
  stream.SetDiagnosis(diagnosis);
  return CProfileFileQPFv4().LoadData(stream, &data, false);
}

// Parses every entry anew and serializes a copy of it, as callers do.
void AskEverything(CProfileData& data) {
  bool more = data.GetEntryStartPos();
  while (more) {
    CProfileDataEntry* const entry = data.GetNextEntry(more);
    CProfileDataEntry* const copy =
        CProfileDataEntry::CreateDataEntry(static_cast<CProfileDataEntry::UsedType>(entry->GetUsedType()));
    if (entry->GetSize() != 0) std::memcpy(copy->GetBuffer(entry->GetSize()), entry->GetRefBuffer(), entry->GetSize());
    if (copy->BufferToData()) {
      copy->GetFormatData();
      copy->DataToBuffer();
    }
    copy->Delete();
  }
}

void CheckSameEntries(CProfileData& data, CProfileData& again) {
  Check(CProfileFileQPFv3().GetEntryCountWithoutICCProfile(&data) ==
        CProfileFileQPFv3().GetEntryCountWithoutICCProfile(&again));
  bool more = data.GetEntryStartPos();
  while (more) {
    CProfileDataEntry* const entry = data.GetNextEntry(more);
    CProfileDataEntry* const copy = again.GetProfileDataEntryFromList(entry->GetUsedType());
    if (entry->GetSize() == 0 && copy == nullptr) continue;
    Check(copy != nullptr);
    if (entry->GetUsedType() == CProfileDataEntry::kIcm) continue;
    // Where a tag was padded its entry has the padding too.
    Check(copy->GetSize() >= entry->GetSize() && copy->GetSize() < entry->GetSize() + 4);
    Check(entry->GetSize() == 0 || std::memcmp(copy->GetRefBuffer(), entry->GetRefBuffer(), entry->GetSize()) == 0);
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::QpfForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  CProfileData data;
  nvx::Diagnosis diagnosis;
  const bool loaded = Load(bytes, size, data, &diagnosis);
  Check(loaded || diagnosis.HasErrors());
  if (!loaded) return 0;
  AskEverything(data);

  // An entry that stands many times on its route is written as many times.
  if (CProfileFileQPFv3().GetSizeNvx1Tag(&data) > 64u * size + 65536) return 0;
  CNvxMemFile saved;
  Check(CProfileFileQPFv4().SaveData(saved, &data, kFlags));
  CProfileData again;
  Check(Load(saved.Buffer, saved.Position, again, nullptr));
  CheckSameEntries(data, again);
  std::free(saved.Buffer);
  return 0;
}
