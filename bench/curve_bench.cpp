// A curve query against a plain copy of the entry's buffer, and the growth of a load with curves and samples.
#include "timing.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using nvx::bench::Seconds;

constexpr std::uint32_t kInks = 16;
constexpr std::uint32_t kSamples = 256;

void FillCurves(CCurveData& set, std::uint32_t count, std::uint32_t samples) {
  for (std::uint32_t ink = 0; ink < count; ++ink) {
    auto* const curve = CCurveDataEntry::CreateCurveDataEntry(CCurveDataEntry::kSamples16);
    curve->SetInkID(ink);
    curve->SetInkName("Light Magenta");
    curve->SetMax(65535);
    for (std::uint32_t i = 0; i < samples; ++i) curve->Add(i * 65535 / samples);
    set.AddTail(curve);
  }
}

std::unique_ptr<CLinearizationEntry> MakeEntry(std::uint32_t count, std::uint32_t samples) {
  auto entry = std::make_unique<CLinearizationEntry>();
  FillCurves(*entry->GetCurveData(), count, samples);
  entry->DataToBuffer();
  return entry;
}

// A profile with one linearization entry, loaded from a file as a print job does it.
class LoadedProfile {
 public:
  explicit LoadedProfile(std::uint32_t samples = kSamples) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("nvxprofile-bench-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    CProfileData data;
    data.SetProfileDataEntry(MakeEntry(kInks, samples).release(), nvx::kRouteMain);
    CProfileFileQCT().SaveData(path.u16string().c_str(), &data, nvx::kRouteMain);
    CError error;
    loaded_ = access_.Init(path.u16string().c_str(), &error);
    std::filesystem::remove(path);
  }

  bool IsLoaded() const { return loaded_; }
  CProfileAccess& Access() { return access_; }
  CProfileDataEntry& Entry() { return *access_.GetProfileData()->GetProfileDataEntryFromList(6); }

 private:
  CProfileAccess access_;
  bool loaded_ = false;
};

// Both sides run in turn, and the best run of each counts, so that a busy machine disturbs neither.
void LinearizationQueryAgainstCopy(benchmark::State& state) {
  LoadedProfile profile(static_cast<std::uint32_t>(state.range(0)));
  if (!profile.IsLoaded()) {
    state.SkipWithError("the profile does not load");
    return;
  }
  const std::uint8_t* const buffer = profile.Entry().Bytes().data();
  const std::uint32_t length = profile.Entry().GetSize();
  std::vector<std::uint8_t> copy(length);
  constexpr int kRepeat = 100;
  double query = std::numeric_limits<double>::max();
  double plain = query;
  CError error;
  for (auto _ : state) {
    query = std::min(query, Seconds([&] {
                       for (int i = 0; i < kRepeat; ++i) {
                         int size = 0;
                         int type = 0;
                         benchmark::DoNotOptimize(profile.Access().GetLinearization(kInks - 1, size, type, &error));
                       }
                     }));
    plain = std::min(plain, Seconds([&] {
                       for (int i = 0; i < kRepeat; ++i) {
                         std::memcpy(copy.data(), buffer, length);
                         benchmark::DoNotOptimize(copy.data());
                         benchmark::ClobberMemory();
                       }
                     }));
  }
  state.counters["query_ns"] = query / kRepeat * 1e9;
  state.counters["copy_ns"] = plain / kRepeat * 1e9;
  state.counters["ratio"] = query / plain;
}
BENCHMARK(LinearizationQueryAgainstCopy)->Arg(256)->Arg(1024)->Arg(4096)->Arg(65536);

// Many answers from one profile, asked by one thread and by two at once. The ratio says how many times as many answers
// the two give in the same time: 2 with a core for each.
void QueriesOfTwoThreads(benchmark::State& state) {
  LoadedProfile profile;
  if (!profile.IsLoaded()) return state.SkipWithError("the profile does not load");
  constexpr int kQueries = 2'000'000;
  const auto ask = [&] {
    CError error;
    int size = 0;
    int type = 0;
    for (int i = 0; i < kQueries; ++i) {
      benchmark::DoNotOptimize(
          profile.Access().GetLinearization(static_cast<std::uint32_t>(i) % kInks, size, type, &error));
    }
  };
  double one = std::numeric_limits<double>::max();
  double two = one;
  for (auto _ : state) {
    one = std::min(one, Seconds(ask));
    two = std::min(two, Seconds([&] {
                     std::thread other(ask);
                     ask();
                     other.join();
                   }));
  }
  state.counters["ratio"] = 2 * one / two;
}
BENCHMARK(QueriesOfTwoThreads)->Iterations(10)->Unit(benchmark::kMillisecond);

// The first parse of an entry, with all its allocations; complexity is judged over the bytes of the form.
void FirstParse(benchmark::State& state) {
  const auto source = MakeEntry(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)));
  for (auto _ : state) {
    CLinearizationEntry entry;
    std::memcpy(entry.GetBuffer(source->GetSize()), source->GetRefBuffer(), source->GetSize());
    benchmark::DoNotOptimize(entry.BufferToData());
  }
  state.SetComplexityN(source->GetSize());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * source->GetSize());
}
BENCHMARK(FirstParse)->ArgsProduct({{16, 64, 256, 1024, 4096}, {256}})->Complexity();
BENCHMARK(FirstParse)->ArgsProduct({{16}, {256, 1024, 4096, 16384, 65536}})->Complexity();

void Import(benchmark::State& state) {
  const auto source = MakeEntry(static_cast<std::uint32_t>(state.range(0)), kSamples);
  const auto target = MakeEntry(static_cast<std::uint32_t>(state.range(0)), kSamples);
  std::uint32_t extend = 0;
  for (CLinearizationEntry* entry : {source.get(), target.get()}) {
    bool more = entry->GetCurveData()->GetHeadPosition();
    while (more)
      entry->GetCurveData()->GetNext(more)->SetExtendInfo(extend++ % static_cast<std::uint32_t>(state.range(0)));
  }
  for (auto _ : state) benchmark::DoNotOptimize(target->DoImport(source.get()));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(Import)->RangeMultiplier(4)->Range(16, 4096)->Complexity();

}  // namespace
