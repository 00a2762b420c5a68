// Both mask download entries over the same bytes: what loads rebuilds, and loads again as the same.
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/mask_download.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

void Check(bool condition) {
  if (!condition) std::abort();
}

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
  if (!loaded) return;

  Check(entry.DataToBuffer());
  const Bytes saved = BufferOf(entry);
  Check(*entry.GetWeftTotalSize() == saved.size());
  Check(entry.BufferToData() && entry.DataToBuffer() && BufferOf(entry) == saved);

  CMaskDownLoadEntry target;
  target.Initialize();
  target.SetWeftDataParameter(0, 6);
  Check(target.DoImport(&entry));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Run<CMaskDownLoadEntry>(bytes, size);
  Run<CMaskDownloadIncludePatternEntry>(bytes, size);
  return 0;
}
