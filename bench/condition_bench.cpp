// Lookups by printing condition in tables of 10,000 patterns, of which the last one passes. Against the same lookup in
// a tenth of the patterns (at most 10 when linear), and against a plain walk that compares one word of each record.
#include "timing.h"

#include <nvxprofile/large_parameter.h>
#include <nvxprofile/special_color.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>

namespace {

using nvx::bench::Quickest;

constexpr std::int32_t kMany = 10'000;
constexpr int kRuns = 200;
constexpr std::int32_t kFew = kMany / 10;
constexpr std::uint32_t kLampStride = 14;
constexpr std::uint32_t kColorStride = 9;
constexpr std::uint32_t kAdviceStride = 5;

// Words behind `head`, each record the one that `write` leaves it with.
template <class Table, class Write>
void FillRecords(Table& table, std::int32_t patterns, std::uint32_t head, std::uint32_t stride, Write write) {
  table.SetPatternCount(patterns);
  for (std::int32_t i = 0; i < patterns; ++i) {
    write(table.GetRefBuffer(0) + head + static_cast<std::uint32_t>(i) * stride, i);
  }
}

// Only the last condition of a pattern tells it from the others.
std::unique_ptr<CLargeParameterDataEntry> LampTable(std::int32_t patterns) {
  const auto count = static_cast<std::uint32_t>(patterns);
  const std::uint32_t sizes[] = {2 + count * kLampStride, count * 4};
  std::unique_ptr<CLargeParameterDataEntry> table(CLargeParameterDataEntry::CreateLargeParameterDataEntry(2, sizes));
  FillRecords(*table, patterns, 2, kLampStride, [](std::int32_t* record, std::int32_t number) {
    record[2] = 1;
    record[3] = -1;
    record[4] = 3;
    record[5] = number * 100 + 1;
    record[10] = 2;
  });
  return table;
}

// Only the last slot of a pattern tells it from the others.
std::unique_ptr<CSpecialColorInfoDataEntry> ColorTable(std::int32_t patterns) {
  const auto count = static_cast<std::uint32_t>(patterns);
  const std::uint32_t sizes[] = {4 + count * kColorStride, count * kAdviceStride};
  std::unique_ptr<CSpecialColorInfoDataEntry> table(
      CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(1, sizes));
  FillRecords(*table, patterns, 4, kColorStride, [](std::int32_t* record, std::int32_t number) {
    record[2] = 1200;
    record[3] = -1;
    record[4] = 4;
    record[5] = 1;
    record[6] = 2;
    record[7] = 3;
    record[8] = 4 + number;
  });
  return table;
}

std::int32_t Find(CLargeParameterDataEntry& table, std::int32_t number) {
  return table.SeekPatternIndexByCondition(1, 2, 3, number * 100 + 1);
}

std::int32_t Find(CSpecialColorInfoDataEntry& table, std::int32_t number) {
  const std::int32_t colors[] = {4 + number, 3, 1, 2};
  return table.SeekPatternIndexByCondition(1250, 2, 4, colors);
}

double WalkSeconds(const std::int32_t* first, std::int32_t patterns, std::uint32_t stride) {
  return Quickest(kRuns, [&] {
    std::int32_t found = -1;
    for (std::int32_t i = 0; i < patterns && found < 0; ++i) {
      const std::int32_t* const record = first + static_cast<std::uint32_t>(i) * stride;
      if (record[stride - 1] == -7) found = i;
    }
    benchmark::DoNotOptimize(found);
  });
}

template <class Table>
void Run(benchmark::State& state, Table& many, Table& few, std::uint32_t head, std::uint32_t stride) {
  if (Find(many, kMany - 1) != kMany - 1) return state.SkipWithError("the last pattern is not found");
  for (auto _ : state) benchmark::DoNotOptimize(Find(many, kMany - 1));
  const double seconds = Quickest(kRuns, [&] { benchmark::DoNotOptimize(Find(many, kMany - 1)); });
  state.counters["ratio"] = seconds / Quickest(kRuns, [&] { benchmark::DoNotOptimize(Find(few, kFew - 1)); });
  state.counters["walks"] = seconds / WalkSeconds(many.GetRefBuffer(0) + head, kMany, stride);
}

void ConditionLamp(benchmark::State& state) { Run(state, *LampTable(kMany), *LampTable(kFew), 2, kLampStride); }
BENCHMARK(ConditionLamp)->Unit(benchmark::kMicrosecond);

void ConditionSpecialColor(benchmark::State& state) {
  Run(state, *ColorTable(kMany), *ColorTable(kFew), 4, kColorStride);
}
BENCHMARK(ConditionSpecialColor)->Unit(benchmark::kMicrosecond);

// The block of the last pattern, found by adding up all before it; against the lookup of the pattern.
void ConditionLampBlock(benchmark::State& state) {
  const auto table = LampTable(kMany);
  const auto block = [&] { benchmark::DoNotOptimize(table->GetRefBufferByPatternIndex(kMany - 1)); };
  for (auto _ : state) block();
  state.counters["ratio"] =
      Quickest(kRuns, block) / Quickest(kRuns, [&] { benchmark::DoNotOptimize(Find(*table, kMany - 1)); });
}
BENCHMARK(ConditionLampBlock)->Unit(benchmark::kMicrosecond);

}  // namespace
