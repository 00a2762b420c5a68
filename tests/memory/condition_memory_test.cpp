// What a lookup by printing condition takes of the heap.
#include "memory/heap.h"

#include <nvxprofile/large_parameter.h>
#include <nvxprofile/special_color.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

namespace heap = nvx::test::heap;

constexpr std::int32_t kPatterns = 10'000;

// Allocations of a lookup that looks at all patterns and takes the last.
template <class Table, class Find>
std::size_t AllocationsOf(Table& table, Find find) {
  return heap::CountOf([&] { EXPECT_EQ(find(table), kPatterns - 1); });
}

TEST(ConditionMemory, ALookupAllocatesAtMostOnce) {
  constexpr std::int32_t kLampStride = 12;
  const std::uint32_t lampSizes[] = {2 + kPatterns * kLampStride, 0};
  const std::unique_ptr<CLargeParameterDataEntry> lamp(
      CLargeParameterDataEntry::CreateLargeParameterDataEntry(2, lampSizes));
  lamp->SetPatternCount(kPatterns);
  lamp->SetParameter(2 + (kPatterns - 1) * kLampStride + 2, 7, 0);
  EXPECT_EQ(AllocationsOf(*lamp, [](auto& table) { return table.SeekPatternIndexByCondition(7, 0, 0, 0); }), 0u);

  constexpr std::int32_t kColorStride = 8;
  const std::uint32_t colorSizes[] = {4 + kPatterns * kColorStride, 0};
  const std::unique_ptr<CSpecialColorInfoDataEntry> colors(
      CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(1, colorSizes));
  colors->SetPatternCount(kPatterns);
  colors->SetParameter(4 + 4, 3, 0);
  for (std::int32_t slot = 0; slot < 3; ++slot) {
    colors->SetParameter(4 + (kPatterns - 1) * kColorStride + 5 + slot, slot + 1, 0);
  }
  const std::int32_t wanted[] = {3, 1, 2};
  EXPECT_EQ(AllocationsOf(*colors, [&](auto& table) { return table.SeekPatternIndexByCondition(0, 0, 3, wanted); }),
            1u);
}

}  // namespace
