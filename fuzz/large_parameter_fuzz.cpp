// Large parameters: a refusal says why, no question leaves the arrays, and what saves loads again as it was.
#include "entry_round_trip.h"
#include "forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/large_parameter.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using nvx::fuzz::Check;

std::int64_t Ask(CLargeParameterDataEntry& table) {
  constexpr std::int32_t kHostile[] = {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 2, 100,
                                       std::numeric_limits<std::int32_t>::max()};
  std::int64_t sum = 0;
  for (const std::int32_t value : kHostile) {
    const std::int32_t pattern = table.SeekPatternIndexByCondition(value, value, value, value);
    Check(pattern >= -1 && pattern < std::max(table.GetPatternCount(), 1));
    for (const std::int32_t asked : {pattern, value}) {
      sum += table.SeekPatternSplitCount(asked) + std::int64_t{table.SeekPatternSplitParamCount(asked, value)};
      Check(table.SeekPatternParamCount(asked) >= 0);
      const std::int32_t* const block = table.GetRefBufferByPatternIndex(asked);
      const auto store = table.Arrays().Words(1);
      Check(block == nullptr || (block >= store.data() && block <= store.data() + store.size()));
    }
  }
  return sum;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  return nvx::fuzz::Mutate(nvx::fuzz::LargeParameterForm(), data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  CLargeParameterEntry entry;
  std::memcpy(entry.GetBuffer(static_cast<std::uint32_t>(size)), bytes, size);
  nvx::Diagnosis diagnosis;
  entry.SetDiagnosis(&diagnosis);
  const bool loaded = entry.BufferToData();
  Check(loaded != diagnosis.HasErrors());

  CLargeParameterData& data = *entry.GetLargeParameterData();
  std::size_t words = 0;
  for (CLargeParameterDataEntry* const table : data.Entries()) {
    Ask(*table);
    words += table->Arrays().Words(0).size() + table->Arrays().Words(1).size();
  }
  Check(16 + 20 * data.Entries().Count() + 4 * words <= size || data.Entries().IsEmpty());
  if (!loaded || !entry.DataToBuffer()) return 0;

  CLargeParameterEntry again;
  Check(again.DoImport(&entry) && again.GetLargeParameterData()->GetPropertyCount() == data.GetPropertyCount());
  Check(again.DataToBuffer() && again.GetSize() == entry.GetSize());
  Check(std::memcmp(again.GetRefBuffer(), entry.GetRefBuffer(), entry.GetSize()) == 0);
  nvx::fuzz::TryFields(entry);
  return 0;
}
