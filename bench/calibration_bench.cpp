// Histories of calibrations with three curve sets of 8 inks: loads and saves as ratios to a copy of their bytes, and
// how queries grow with the number of calibrations.
#include "../tests/support/sample_profile.h"
#include "timing.h"

#include <nvxprofile/calibration_history.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using nvx::bench::GiveFreePagesBack;
using nvx::bench::Median;
using nvx::bench::ProcessorSeconds;

// Whether memory comes from the system or was in use before.
enum class Heap { kFresh, kUsed };

// Seconds for one copy of the bytes into a block of its own, where several live side by side as in a loaded history.
double CopySeconds(const std::uint8_t* bytes, std::size_t size, Heap heap) {
  constexpr std::size_t kCopies = 6;
  void* copies[kCopies];
  if (heap == Heap::kFresh) GiveFreePagesBack();
  const double seconds = ProcessorSeconds([&] {
    for (void*& copy : copies) {
      copy = std::malloc(size);
      std::memcpy(copy, bytes, size);
      benchmark::DoNotOptimize(copy);
    }
  });
  for (void* const copy : copies) std::free(copy);
  return seconds / kCopies;
}

// Copies and runs in turns, so that a busy machine disturbs both; the ratio is that of their medians. What a run gives
// is destroyed outside of its time.
template <class Run>
void ReportRatio(benchmark::State& state, const CProfileDataEntry& entry, Heap heap, Run run) {
  const auto bytes = entry.Bytes();
  std::vector<double> copies;
  std::vector<double> runs;
  for (auto _ : state) {
    copies.push_back(CopySeconds(bytes.data(), bytes.size(), heap));
    if (heap == Heap::kFresh) GiveFreePagesBack();
    decltype(run()) result{};
    runs.push_back(ProcessorSeconds([&] { result = run(); }));
    benchmark::DoNotOptimize(result);
    state.SetIterationTime(runs.back());
  }
  state.counters["copy_us"] = 1e6 * Median(copies);
  state.counters["ratio"] = Median(runs) / Median(copies);
}

// Loading into a fresh history, the copy of its bytes into the entry's buffer included.
void CalibrationLoad(benchmark::State& state, Heap heap) {
  if (heap == Heap::kUsed) nvx::bench::KeepFreePages();
  const auto history = nvx::test::SampleHistory(static_cast<int>(state.range(0)));
  const std::size_t size = history->GetSize();
  const std::uint8_t* const bytes = history->Bytes().data();
  ReportRatio(state, *history, heap, [&] {
    auto loaded = std::make_unique<CCalibrationHistoryEntry>();
    std::memcpy(loaded->GetBuffer(static_cast<std::uint32_t>(size)), bytes, size);
    if (!loaded->BufferToData()) std::abort();
    return loaded;
  });
  state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
}
BENCHMARK_CAPTURE(CalibrationLoad, FreshMemory, Heap::kFresh)
    ->Arg(50)
    ->Arg(200)
    ->Arg(800)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CalibrationLoad, UsedMemory, Heap::kUsed)
    ->Arg(50)
    ->Arg(200)
    ->Arg(800)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

void CalibrationSave(benchmark::State& state) {
  const auto history = nvx::test::SampleHistory(static_cast<int>(state.range(0)));
  ReportRatio(state, *history, Heap::kFresh, [&] { return history->DataToBuffer(); });
}
BENCHMARK(CalibrationSave)->Arg(200)->UseManualTime()->Unit(benchmark::kMicrosecond);

class LoadedProfile {
 public:
  explicit LoadedProfile(int calibrations) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("nvxprofile-bench-" + std::to_string(std::rand()) + ".qct");
    CProfileData data;
    data.SetProfileDataEntry(nvx::test::SampleHistory(calibrations).release(), nvx::kRouteIccRoot);
    if (!CProfileFileQCT().SaveData(path.u16string().c_str(), &data, nvx::kRouteIccRoot)) std::abort();
    if (!access_.Init(path.u16string().c_str(), &error_)) std::abort();
    std::filesystem::remove(path);
  }
  CProfileAccess& operator*() { return access_; }
  CError& Error() { return error_; }

 private:
  CProfileAccess access_;
  CError error_;
};

void CalibrationNewest(benchmark::State& state) {
  LoadedProfile profile(static_cast<int>(state.range(0)));
  std::int32_t code = 0;
  for (auto _ : state) benchmark::DoNotOptimize((*profile).GetNewestCalibrationCode(code, &profile.Error()));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(CalibrationNewest)->Arg(50)->Arg(200)->Arg(800)->Complexity(benchmark::oN)->Unit(benchmark::kMicrosecond);

void CalibrationCurve(benchmark::State& state) {
  LoadedProfile profile(static_cast<int>(state.range(0)));
  const int last = static_cast<int>(state.range(0)) - 1;
  int size = 0;
  int type = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize((*profile).GetCalibrationInkLimit(7, last, size, type, &profile.Error()));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(CalibrationCurve)->Arg(50)->Arg(200)->Arg(800)->Complexity(benchmark::oN)->Unit(benchmark::kMicrosecond);

}  // namespace
