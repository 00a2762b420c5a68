// Special colours: a refusal says why, no question leaves the arrays, and what saves loads again as it was.
#include "entry_round_trip.h"
#include "forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/special_color.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using nvx::fuzz::Check;

std::int64_t Ask(CSpecialColorInfoDataEntry& table) {
  constexpr std::int32_t kHostile[] = {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 2, 100,
                                       std::numeric_limits<std::int32_t>::max()};
  std::int64_t sum = 0;
  for (std::int32_t count = 0; count <= 7; ++count) {
    const std::int32_t value = kHostile[count % 7];
    const std::int32_t pattern = table.SeekPatternIndexByCondition(value, value, count, kHostile);
    Check(pattern >= -1 && pattern < std::max(table.GetPatternCount(), 1));
    for (const std::int32_t asked : {pattern, value}) {
      sum += std::int64_t{table.SeekPatternRecommendLevel(asked)} + table.SeekPatternRecommendDensity(asked) +
             table.SeekPatternVDCurveIndex(asked);
    }
  }
  return sum;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::SpecialColorForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  CSpecialColorInfoEntry entry;
  std::memcpy(entry.GetBuffer(static_cast<std::uint32_t>(size)), bytes, size);
  nvx::Diagnosis diagnosis;
  entry.SetDiagnosis(&diagnosis);
  const bool loaded = entry.BufferToData();
  Check(loaded != diagnosis.HasErrors());

  CSpecialColorInfoData& data = *entry.GetSpecialColorInfoData();
  std::size_t held = 32;
  for (CSpecialColorInfoDataEntry* const table : data.Entries()) {
    Ask(*table);
    held += 20 + 4 * (table->Arrays().Words(0).size() + table->Arrays().Words(1).size());
    for (CCurveData* const curves : table->CurvesVD()) {
      bool more = curves->GetHeadPosition();
      while (more) held += curves->GetNext(more)->GetSize();
    }
  }
  Check(held <= size || data.Entries().IsEmpty());
  if (!loaded || !entry.DataToBuffer()) return 0;

  CSpecialColorInfoEntry again;
  Check(again.DoImport(&entry) && again.GetSpecialColorInfoData()->GetPropertyCount() == data.GetPropertyCount());
  Check(again.DataToBuffer() && again.GetSize() == entry.GetSize());
  Check(std::memcmp(again.GetRefBuffer(), entry.GetRefBuffer(), entry.GetSize()) == 0);
  nvx::fuzz::TryFields(entry);
  return 0;
}
