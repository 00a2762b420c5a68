// Print masks: what a load and a packing cost beside plain copies of the same bytes, and how a lookup grows.
#include "timing.h"

#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using nvx::bench::Quickest;

using Bytes = std::vector<std::uint8_t>;

constexpr int kRuns = 30;
constexpr std::uint32_t kTotal = 2 << 20;

void Fill(CMaskDownloadIncludePatternEntry& entry, std::uint32_t records, std::uint32_t patterns, std::uint32_t size) {
  const Bytes bytes(size, 0x5A);
  for (std::uint32_t i = 0; i < records; ++i) {
    CMaskParameterDataEntry* const record = CMaskParameterDataEntry::CreateEntry();
    record->SetPass(i);
    for (std::uint32_t j = 0; j < 15; ++j) record->AddUsePatternID((i + j * 7) % patterns);
    entry.GetMaskParameterData()->AddTail(record);
  }
  for (std::uint32_t i = 0; i < patterns; ++i) {
    CMaskPatternDataEntry* const pattern = CMaskPatternDataEntry::CreateEntry();
    pattern->SetMaskPatternID(i);
    pattern->SetMaskPatternBuffer(bytes.data(), size);
    entry.GetMaskPatternData()->Add(pattern);
  }
}

// One copy into a block that is allocated for it, as each step makes at least.
double CopySeconds(const std::uint8_t* bytes, std::uint32_t size) {
  return Quickest(kRuns, [&] {
    Bytes copy(bytes, bytes + size);
    benchmark::DoNotOptimize(copy.data());
  });
}

// The time of the loop, as a multiple of `reference` for each round.
template <class Work>
void RunAgainst(benchmark::State& state, double reference, Work&& work) {
  for (auto _ : state) work();
  state.counters["ratio"] = Quickest(kRuns, work) / reference;
}

// Patterns of the given size, 2 MB in all.
void MaskLoad(benchmark::State& state) {
  const auto size = static_cast<std::uint32_t>(state.range(0));
  CMaskDownloadIncludePatternEntry entry;
  Fill(entry, 8, kTotal / size, size);
  entry.DataToBuffer();
  RunAgainst(state, CopySeconds(entry.GetRefBuffer(), entry.GetSize()), [&] { entry.BufferToData(); });
}
BENCHMARK(MaskLoad)->Arg(4096)->Arg(65536)->Unit(benchmark::kMicrosecond);

void MaskSave(benchmark::State& state) {
  const auto size = static_cast<std::uint32_t>(state.range(0));
  CMaskDownloadIncludePatternEntry entry;
  Fill(entry, 8, kTotal / size, size);
  entry.DataToBuffer();
  RunAgainst(state, CopySeconds(entry.GetRefBuffer(), entry.GetSize()), [&] { entry.DataToBuffer(); });
}
BENCHMARK(MaskSave)->Arg(4096)->Arg(65536)->Unit(benchmark::kMicrosecond);

// An access object on a profile with that entry.
std::unique_ptr<CProfileAccess> AccessWith(std::uint32_t records, std::uint32_t patterns, std::uint32_t size) {
  auto entry = std::make_unique<CMaskDownloadIncludePatternEntry>();
  Fill(*entry, records, patterns, size);
  entry->DataToBuffer();
  CProfileData data;
  data.SetProfileDataEntry(entry.release(), nvx::kRouteMaskDownload);
  const std::filesystem::path path = std::filesystem::temp_directory_path() / "nvxprofile-mask-bench.qct";
  const std::u16string wide = path.u16string();
  auto access = std::make_unique<CProfileAccess>();
  CError error;
  if (!CProfileFileQCT().SaveData(wide.c_str(), &data, nvx::kRouteMaskDownload) || !access->Init(wide.c_str(), &error))
    access.reset();
  std::filesystem::remove(path);
  return access;
}

std::uint32_t Pack(CProfileAccess& access, std::uint8_t* buffer, std::uint32_t pass) {
  CError error;
  return access.GetMaskParameterAndPatternBuffer(buffer, pass, 0, 0, 0, nullptr, &error);
}

// 15 patterns, 2 MB in all, against a copy between two blocks that are there.
void MaskPack(benchmark::State& state) {
  const auto access = AccessWith(1, 15, kTotal / 15);
  const std::uint32_t size = access ? Pack(*access, nullptr, 0) : 0;
  if (size < kTotal) return state.SkipWithError("no packed form");
  Bytes from(size, 1);
  Bytes to(size, 2);
  const double reference = Quickest(kRuns, [&] {
    std::memcpy(to.data(), from.data(), size);
    benchmark::ClobberMemory();
  });
  RunAgainst(state, reference, [&] { benchmark::DoNotOptimize(Pack(*access, to.data(), 0)); });
}
BENCHMARK(MaskPack)->Unit(benchmark::kMicrosecond);

// The last of 10,000 records in a table of 10,000 patterns, against the same with 1,000 of both: at most 10 when
// linear.
void MaskLookup(benchmark::State& state) {
  const auto few = AccessWith(1000, 1000, 16);
  const auto many = AccessWith(10000, 10000, 16);
  if (!few || !many) return state.SkipWithError("no profile");
  const double reference = Quickest(kRuns, [&] { benchmark::DoNotOptimize(Pack(*few, nullptr, 999)); });
  RunAgainst(state, reference, [&] { benchmark::DoNotOptimize(Pack(*many, nullptr, 9999)); });
}
BENCHMARK(MaskLookup)->Unit(benchmark::kMicrosecond);

}  // namespace
