// The mask parameter list and the mask pattern table, chosen by the first magic: what loads saves, and loads again as
// the same.
#include "check.h"
#include "core/stream.h"
#include "forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/mask.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using nvx::fuzz::Check;
using Bytes = std::vector<std::uint8_t>;

template <class File, class Data>
Bytes Save(Data& data) {
  Bytes bytes(*nvx::SizeOf([&](CNvxFile& file) { return File().SaveFile(file, &data); }));
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  Check(File().SaveFile(stream, &data) && stream.Position == bytes.size());
  return bytes;
}

template <class File, class Data>
void Run(Bytes bytes) {
  Data data;
  nvx::Diagnosis diagnosis;
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  stream.SetDiagnosis(&diagnosis);
  const bool loaded = File().LoadFile(stream, &data);
  Check(loaded != diagnosis.HasErrors());
  Check(loaded || data.GetEntryCount() == 0);

  Bytes saved = Save<File>(data);
  Data again;
  CNvxMemFile second(saved.data(), static_cast<std::uint32_t>(saved.size()));
  Check(File().LoadFile(second, &again) && second.Position == saved.size());
  Check(Save<File>(again) == saved);
}

bool IsPatternTable(const std::uint8_t* bytes, std::size_t size) {
  return size >= 4 && std::memcmp(bytes, "HTPM", 4) == 0;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  const nvx::fuzz::Form& form =
      IsPatternTable(data, size) ? nvx::fuzz::MaskPatternForm() : nvx::fuzz::MaskParameterForm();
  return nvx::fuzz::Mutate(form, data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const Bytes input(bytes, bytes + size);
  if (IsPatternTable(bytes, size)) {
    Run<CMaskPatternFile, CMaskPatternData>(input);
  } else {
    Run<CMaskParameterFile, CMaskParameterData>(input);
  }
  return 0;
}
