// A profile of the current generation: load, ask everything, save, load again; both models hold the same.
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/profile_file_qpf.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::uint32_t kFlags = nvx::kSaveReplaceProfile | nvx::kSaveCalibration;

void Check(bool condition) {
  if (!condition) std::abort();
}

void StoreBig(std::uint8_t* bytes, std::uint32_t value) {
  value = __builtin_bswap32(value);
  std::memcpy(bytes, &value, sizeof value);
}

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

// Mutates one tag's data or the table, and keeps the frame's size field right, so that most inputs get past it.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  nvx::IccDirectory directory;
  if (seed % 4 == 0 || !nvx::ReadIccDirectory(data, size, directory) || directory.tags.empty())
    return LLVMFuzzerMutate(data, size, maxSize);
  const std::size_t index = seed / 4 % directory.tags.size();
  const nvx::IccTag tag = directory.tags[index];
  std::vector<std::uint8_t> bytes(data + tag.offset, data + tag.offset + tag.size);
  bytes.resize(std::max<std::size_t>(2 * bytes.size(), 64));
  bytes.resize(LLVMFuzzerMutate(bytes.data(), tag.size, bytes.size()));
  // A tag that grows moves to the end.
  const std::size_t offset = bytes.size() <= tag.size ? tag.offset : (size + 3) / 4 * 4;
  const std::size_t end = std::max(size, offset + bytes.size());
  if (end > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
  std::fill(data + size, data + end, std::uint8_t{0});
  std::copy(bytes.begin(), bytes.end(), data + offset);
  StoreBig(data + 132 + 12 * index + 4, static_cast<std::uint32_t>(offset));
  StoreBig(data + 132 + 12 * index + 8, static_cast<std::uint32_t>(bytes.size()));
  StoreBig(data, static_cast<std::uint32_t>(end));
  return end;
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
