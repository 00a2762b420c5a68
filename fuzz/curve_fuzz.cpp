// A curve set: what loads is written back and loads again as the same, and an entry that already holds curves parses it
// as a fresh one does.
#include "core/stream.h"
#include "entry_round_trip.h"
#include "forms.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/diagnosis.h>

#include <cstdint>
#include <cstring>

namespace {

using nvx::fuzz::Check;

void SetBytes(CProfileDataEntry& entry, const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return entry.DeleteBuffer();
  std::memcpy(entry.GetBuffer(static_cast<std::uint32_t>(size)), bytes, size);
}

bool HasSameBuffer(CProfileDataEntry& a, CProfileDataEntry& b) {
  return a.GetSize() == b.GetSize() &&
         (a.GetSize() == 0 || std::memcmp(a.GetRefBuffer(), b.GetRefBuffer(), a.GetSize()) == 0);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::CurveSetForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  // Through the serializer.
  CCurveData set;
  CNvxMemFile stream(const_cast<std::uint8_t*>(bytes), static_cast<std::uint32_t>(size));
  nvx::Diagnosis diagnosis;
  stream.SetDiagnosis(&diagnosis);
  const bool loaded = CCurveFile().LoadFile(stream, &set);
  Check(loaded != diagnosis.HasErrors());

  // Through an entry: the first half of the input leaves curves of other shapes behind.
  CLinearizationEntry entry;
  SetBytes(entry, bytes, size / 2);
  entry.BufferToData();
  SetBytes(entry, bytes, size);
  Check(entry.BufferToData() == loaded || size == 0);
  const CLinearizationEntry& look = entry;
  Check(look.GetCurveData()->GetCount() == set.GetCount() || size == 0);
  if (!loaded || nvx::fuzz::IsReadInPart(entry, bytes, size)) return 0;

  Check(entry.DataToBuffer());
  Check(entry.GetSize() == nvx::SizeOf([&](CNvxFile& file) { return CCurveFile().SaveFile(file, &set); }));
  Check(entry.GetSize() <= size);
  CLinearizationEntry again;
  SetBytes(again, entry.GetRefBuffer(), entry.GetSize());
  Check(again.BufferToData());
  Check(again.DataToBuffer());
  Check(HasSameBuffer(entry, again));
  Check(entry.BufferToData() && entry.DataToBuffer() && HasSameBuffer(entry, again));

  CInkLimitEntry target;
  CCurveData& copy = *target.GetCurveData();
  set.Copy(copy);
  Check(copy.GetCount() == set.GetCount());
  Check(target.DoImport(&entry));
  return 0;
}
