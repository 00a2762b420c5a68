// Both mask download entries over the same bytes: what loads rebuilds, and loads again as the same.
#include "entry_round_trip.h"
#include "forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/mask_download.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using nvx::fuzz::Check;
using Bytes = std::vector<std::uint8_t>;

void SetBuffer(CProfileDataEntry& entry, const std::uint8_t* bytes, std::size_t size) {
  if (size != 0) std::memcpy(entry.GetBuffer(static_cast<std::uint32_t>(size)), bytes, size);
}

Bytes BufferOf(CProfileDataEntry& entry) { return Bytes(entry.GetRefBuffer(), entry.GetRefBuffer() + entry.GetSize()); }

template <class Entry>
void Run(const std::uint8_t* bytes, std::size_t size) {
  Entry entry;
  nvx::Diagnosis diagnosis;
  SetBuffer(entry, bytes, size);
  entry.SetDiagnosis(&diagnosis);
  const bool loaded = entry.BufferToData();
  Check(size == 0 || loaded != diagnosis.HasErrors());
  if (!loaded || nvx::fuzz::IsReadInPart(entry, bytes, size)) return;

  Check(entry.DataToBuffer());
  const Bytes saved = BufferOf(entry);
  Check(*entry.GetWeftTotalSize() == saved.size());
  Check(entry.BufferToData() && entry.DataToBuffer() && BufferOf(entry) == saved);
  nvx::fuzz::TryFields(entry);

  CMaskDownLoadEntry target;
  target.Initialize();
  target.SetWeftDataParameter(0, 6);
  Check(target.DoImport(&entry));
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::MaskDownloadForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Run<CMaskDownLoadEntry>(bytes, size);
  Run<CMaskDownloadIncludePatternEntry>(bytes, size);
  return 0;
}
