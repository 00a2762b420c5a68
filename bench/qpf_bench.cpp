// Loading and saving a whole profile of the current generation, against nothing but moving its bytes: a load against
// reading the file into fresh memory, a save against putting the same bytes in the place of the file. The memory that
// both take is watched by a test.
#include "../tests/support/sample_profile.h"
#include "core/replacing_file.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <benchmark/benchmark.h>

#include <unistd.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

class ProfileOnDisk {
 public:
  ProfileOnDisk() {
    nvx::test::FillSampleProfile(data_);
    if (!Save(widePath_)) std::abort();
  }
  ~ProfileOnDisk() { std::filesystem::remove(path_); }

  bool Save(const std::u16string& path) {
    return CProfileFileQPFv4().SaveData(path.c_str(), &data_, nvx::kSaveReplaceProfile);
  }
  bool Save(CNvxFile& file) { return CProfileFileQPFv4().SaveData(file, &data_, nvx::kSaveReplaceProfile); }
  const std::string& Path() const { return path_; }
  const std::u16string& WidePath() const { return widePath_; }
  std::size_t Size() const { return std::filesystem::file_size(path_); }

 private:
  CProfileData data_;
  std::string path_ = (std::filesystem::temp_directory_path() / ("qpf-bench-" + std::to_string(::getpid()))).string();
  std::u16string widePath_ = std::u16string(path_.begin(), path_.end());
};

struct FreeBlock {
  void operator()(std::uint8_t* block) const { std::free(block); }
};
using Block = std::unique_ptr<std::uint8_t, FreeBlock>;

Block ReadInto(const ProfileOnDisk& profile) {
  Block block(static_cast<std::uint8_t*>(std::malloc(profile.Size())));
  CNvxFile file;
  const auto size = static_cast<std::uint32_t>(profile.Size());
  const bool read = file.Open(profile.WidePath().c_str(), nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting) &&
                    file.Read(block.get(), size) == size;
  if (!read) std::abort();
  benchmark::DoNotOptimize(block.get());
  return block;
}

template <class Work>
double Seconds(Work work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Runs both in turns; the ratio is that of their quickest rounds, which other processes disturb least.
template <class Plain, class Work>
void Compare(benchmark::State& state, const ProfileOnDisk& profile, Plain plain, Work work) {
  double quickestPlain = 1e9;
  double quickestWork = 1e9;
  for (auto _ : state) {
    quickestPlain = std::min(quickestPlain, Seconds(plain));
    const double seconds = Seconds(work);
    quickestWork = std::min(quickestWork, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["ratio"] = quickestWork / quickestPlain;
  state.counters["bytes"] = static_cast<double>(profile.Size());
}

void QpfInit(benchmark::State& state) {
  const ProfileOnDisk profile;
  Compare(
      state, profile, [&] { ReadInto(profile); },
      [&] {
        CProfileAccess access;
        CError error;
        if (!access.Init(profile.WidePath().c_str(), &error)) std::abort();
      });
}
BENCHMARK(QpfInit)->UseManualTime()->Unit(benchmark::kMillisecond);

void QpfSave(benchmark::State& state) {
  ProfileOnDisk profile;
  const Block bytes = ReadInto(profile);
  const auto size = static_cast<std::uint32_t>(profile.Size());
  Compare(
      state, profile,
      [&] {
        const bool saved = nvx::SaveByReplacing(profile.WidePath().c_str(),
                                                [&](CNvxFile& file) { return file.Write(bytes.get(), size) == size; });
        if (!saved) std::abort();
      },
      [&] {
        if (!profile.Save(profile.WidePath())) std::abort();
      });
}
BENCHMARK(QpfSave)->UseManualTime()->Unit(benchmark::kMillisecond);

// The same where the target costs nothing but a copy: a file without the way to the disk.
void QpfSaveWithoutDisk(benchmark::State& state) {
  ProfileOnDisk profile;
  const Block bytes = ReadInto(profile);
  const auto size = static_cast<std::uint32_t>(profile.Size());
  const auto write = [&](auto save) {
    CNvxFile file;
    const bool open = file.Open(profile.WidePath().c_str(), nvx::kGenericWrite, nvx::kNoShare, nvx::kCreateAlways);
    if (!open || !save(file)) std::abort();
  };
  Compare(
      state, profile, [&] { write([&](CNvxFile& file) { return file.Write(bytes.get(), size) == size; }); },
      [&] { write([&](CNvxFile& file) { return profile.Save(file); }); });
}
BENCHMARK(QpfSaveWithoutDisk)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
