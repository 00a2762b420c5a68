// Loading a colour table, against a copy of its form in the same run.
#include "timing.h"

#include <nvxprofile/lut.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>

namespace {

using nvx::bench::Seconds;

// An entry with the form of a table of 3 inputs.
std::unique_ptr<CSeparateChromaEntry> MakeEntry(std::uint32_t outputs, std::uint32_t grid) {
  auto entry = std::make_unique<CSeparateChromaEntry>();
  CLutData3D& table = *entry->GetLutData();
  table.Initialize(outputs, grid);
  const nvx::SampleRun run = table.GetRun(0);
  for (std::uint32_t i = 0; i < run.size; ++i) run.samples[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
  entry->DataToBuffer();
  return entry;
}

// Runs `work` and a plain copy of `size` bytes into a new block in turns, and reports the ratio of their times.
template <class Work>
void CompareWithCopy(benchmark::State& state, const std::uint8_t* bytes, std::size_t size, Work work) {
  double copying = 0;
  double working = 0;
  for (auto _ : state) {
    copying += Seconds([&] {
      const std::unique_ptr<std::uint8_t[]> copy(new std::uint8_t[size]);
      std::memcpy(copy.get(), bytes, size);
      benchmark::DoNotOptimize(copy.get());
      benchmark::ClobberMemory();
    });
    const double seconds = Seconds(work);
    working += seconds;
    state.SetIterationTime(seconds);
  }
  state.counters["ratio"] = working / copying;
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
}

void LoadLut(benchmark::State& state) {
  const auto entry = MakeEntry(static_cast<std::uint32_t>(state.range(1)), static_cast<std::uint32_t>(state.range(0)));
  CompareWithCopy(state, entry->GetRefBuffer(), entry->GetSize(), [&] {
    if (!entry->BufferToData()) state.SkipWithError("the table does not load");
  });
}
BENCHMARK(LoadLut)
    ->ArgNames({"grid", "outputs"})
    ->Args({17, 8})
    ->Args({33, 8})
    ->Args({65, 8})
    ->Args({33, 1})
    ->UseManualTime();

// With a new entry each time, as a profile does that is loaded.
void LoadLutIntoNewEntry(benchmark::State& state) {
  const auto entry = MakeEntry(8, 33);
  CompareWithCopy(state, entry->GetRefBuffer(), entry->GetSize(), [&] {
    CSeparateChromaEntry other;
    CNvxMemFile stream(entry->GetRefBuffer(), entry->GetSize());
    if (!CLutFile().LoadFile(stream, other.GetLutData())) state.SkipWithError("the table does not load");
  });
}
BENCHMARK(LoadLutIntoNewEntry)->UseManualTime();

void SaveLut(benchmark::State& state) {
  const auto entry = MakeEntry(8, 33);
  const auto form = MakeEntry(8, 33);
  CompareWithCopy(state, form->GetRefBuffer(), form->GetSize(), [&] { entry->DataToBuffer(); });
}
BENCHMARK(SaveLut)->UseManualTime();

void FlatCopyOfLut(benchmark::State& state) {
  const auto entry = MakeEntry(8, 33);
  CompareWithCopy(state, entry->GetRefBuffer(), entry->GetSize(),
                  [&] { benchmark::DoNotOptimize(entry->GetLutData()->GetRefBuffer()); });
}
BENCHMARK(FlatCopyOfLut)->UseManualTime();

// What a caller pays who looks at every node.
void WalkNodes(benchmark::State& state) {
  const auto entry = MakeEntry(8, static_cast<std::uint32_t>(state.range(0)));
  CLutData3D& table = *entry->GetLutData();
  for (auto _ : state) {
    entry->BufferToData();
    std::uint32_t sum = 0;
    for (int i = 0; i < table.GetSize(); ++i) sum += table.GetAt(i)->GetAt(0);
    benchmark::DoNotOptimize(sum);
  }
  state.counters["time_per_node"] = benchmark::Counter(static_cast<double>(state.iterations()) * table.GetSize(),
                                                       benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(WalkNodes)->ArgName("grid")->Arg(17)->Arg(33)->Arg(65);

}  // namespace
