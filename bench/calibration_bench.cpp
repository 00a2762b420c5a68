// Histories of calibrations with three curve sets of 8 inks: loads in copies of their bytes, queries in loads.
#include <nvxprofile/calibration_history.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

namespace {

template <class Entry>
std::unique_ptr<Entry> EightInks() {
  auto entry = std::make_unique<Entry>();
  for (std::uint32_t ink = 0; ink < 8; ++ink) {
    auto* const curve = new CCurveDataEntry16;
    curve->SetInkID(ink);
    curve->SetExtendInfo(entry->GetUsedType() == CProfileDataEntry::kCalibrationInklimit ? 12 : 0);
    for (std::uint32_t i = 0; i < 256; ++i) curve->Add(i * 257);
    entry->GetCurveData()->AddTail(curve);
  }
  return entry;
}

std::unique_ptr<CCalibrationHistoryEntry> MakeHistory(int calibrations) {
  auto history = std::make_unique<CCalibrationHistoryEntry>();
  for (int i = 0; i < calibrations; ++i) {
    nvx::NewCalibration calibration;
    calibration.name = u"calibration";
    calibration.time = 1 + i;
    calibration.inkLimit = EightInks<CCalibrationInklimitEntry>();
    calibration.linearization = EightInks<CCalibrationLinearizationEntry>();
    calibration.grayBalance = EightInks<CCalibrationGrayBalanceEntry>();
    nvx::AddCalibration(*history, std::move(calibration));
  }
  history->DataToBuffer();
  return history;
}

// Seconds for one copy of the bytes into a block of its own, as any holder of them makes one.
double CopySeconds(const std::uint8_t* bytes, std::size_t size) {
  double best = 1e9;
  for (int i = 0; i < 50; ++i) {
    const auto start = std::chrono::steady_clock::now();
    void* const copy = std::malloc(size);
    std::memcpy(copy, bytes, size);
    benchmark::DoNotOptimize(copy);
    benchmark::ClobberMemory();
    std::free(copy);
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

template <class Run>
void ReportRatio(benchmark::State& state, double unit, Run run) {
  double best = 1e9;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    run();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.SetIterationTime(seconds);
    best = std::min(best, seconds);
  }
  state.counters["ratio"] = best / unit;
}

// Loading into a fresh history, the copy of its bytes into the entry's buffer included.
void CalibrationLoad(benchmark::State& state) {
  const auto history = MakeHistory(static_cast<int>(state.range(0)));
  const std::size_t size = history->GetSize();
  ReportRatio(state, CopySeconds(history->GetRefBuffer(), size), [&] {
    CCalibrationHistoryEntry loaded;
    std::memcpy(loaded.GetBuffer(static_cast<std::uint32_t>(size)), history->GetRefBuffer(), size);
    if (!loaded.BufferToData()) std::abort();
  });
  state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
}
BENCHMARK(CalibrationLoad)->Arg(50)->Arg(200)->Arg(800)->UseManualTime()->Unit(benchmark::kMicrosecond);

void CalibrationSave(benchmark::State& state) {
  const auto history = MakeHistory(static_cast<int>(state.range(0)));
  ReportRatio(state, CopySeconds(history->GetRefBuffer(), history->GetSize()), [&] { history->DataToBuffer(); });
}
BENCHMARK(CalibrationSave)->Arg(200)->UseManualTime()->Unit(benchmark::kMicrosecond);

class LoadedProfile {
 public:
  explicit LoadedProfile(int calibrations) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("nvxprofile-bench-" + std::to_string(std::rand()) + ".qct");
    CProfileData data;
    data.SetProfileDataEntry(MakeHistory(calibrations).release(), nvx::kRouteIccRoot);
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

// Queries, for each calibration in the history: the numbers stay level as long as a query is linear.
void CalibrationNewest(benchmark::State& state) {
  LoadedProfile profile(static_cast<int>(state.range(0)));
  std::int32_t code = 0;
  ReportRatio(state, static_cast<double>(state.range(0)) * 1e-6,
              [&] { (*profile).GetNewestCalibrationCode(code, &profile.Error()); });
}
BENCHMARK(CalibrationNewest)->Arg(50)->Arg(200)->Arg(800)->UseManualTime()->Unit(benchmark::kMicrosecond);

void CalibrationCurve(benchmark::State& state) {
  LoadedProfile profile(static_cast<int>(state.range(0)));
  int size = 0;
  int type = 0;
  ReportRatio(state, static_cast<double>(state.range(0)) * 1e-6, [&] {
    if ((*profile).GetCalibrationInkLimit(7, static_cast<int>(state.range(0)) - 1, size, type, &profile.Error()) ==
        nullptr) {
      std::abort();
    }
  });
}
BENCHMARK(CalibrationCurve)->Arg(50)->Arg(200)->Arg(800)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
