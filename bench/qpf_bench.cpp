// Loading and saving a whole profile of the current generation, against nothing but moving its bytes: a load against
// reading the file into fresh memory, a save against putting the same bytes in the place of the file. The memory that
// both take is watched by a test.
#include "../tests/support/sample_profile.h"
#include "core/replacing_file.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

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

// Memory that comes from the system at each call, and not from what an earlier round has given back to the heap.
class FreshBlock {
 public:
  explicit FreshBlock(std::size_t size)
      : size_(size), block_(::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (block_ == MAP_FAILED) std::abort();
  }
  FreshBlock(const FreshBlock&) = delete;
  FreshBlock& operator=(const FreshBlock&) = delete;
  ~FreshBlock() { ::munmap(block_, size_); }

  void* Get() const { return block_; }

 private:
  std::size_t size_;
  void* block_;
};

void Read(const ProfileOnDisk& profile, const FreshBlock& block) {
  CNvxFile file;
  const auto size = static_cast<std::uint32_t>(profile.Size());
  const bool read = file.Open(profile.WidePath().c_str(), nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting) &&
                    file.Read(block.Get(), size) == size;
  if (!read) std::abort();
  benchmark::DoNotOptimize(block.Get());
}

// Processor time, that of the system included: the disk and other processes are somebody else's.
template <class Work>
double Seconds(Work work) {
  const auto now = [] {
    timespec time;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  work();
  return now() - start;
}

double Median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

// Runs both in turns; the ratio is that of their medians.
template <class Plain, class Work>
void Compare(benchmark::State& state, const ProfileOnDisk& profile, Plain plain, Work work) {
  std::vector<double> plainTimes;
  std::vector<double> workTimes;
  for (auto _ : state) {
    plainTimes.push_back(Seconds(plain));
    workTimes.push_back(Seconds(work));
    state.SetIterationTime(workTimes.back());
  }
  state.counters["plain_ms"] = 1e3 * Median(plainTimes);
  state.counters["ratio"] = Median(workTimes) / Median(plainTimes);
  state.counters["bytes"] = static_cast<double>(profile.Size());
}

void QpfInit(benchmark::State& state) {
  const ProfileOnDisk profile;
  Compare(
      state, profile, [&] { Read(profile, FreshBlock(profile.Size())); },
      [&] {
        CProfileAccess access;
        CError error;
        if (!access.Init(profile.WidePath().c_str(), &error)) std::abort();
      });
}
BENCHMARK(QpfInit)->UseManualTime()->Unit(benchmark::kMillisecond);

void QpfSave(benchmark::State& state) {
  ProfileOnDisk profile;
  const FreshBlock bytes(profile.Size());
  Read(profile, bytes);
  const auto size = static_cast<std::uint32_t>(profile.Size());
  Compare(
      state, profile,
      [&] {
        const bool saved = nvx::SaveByReplacing(profile.WidePath().c_str(),
                                                [&](CNvxFile& file) { return file.Write(bytes.Get(), size) == size; });
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
  const FreshBlock bytes(profile.Size());
  Read(profile, bytes);
  const auto size = static_cast<std::uint32_t>(profile.Size());
  const auto write = [&](auto save) {
    CNvxFile file;
    const bool open = file.Open(profile.WidePath().c_str(), nvx::kGenericWrite, nvx::kNoShare, nvx::kCreateAlways);
    if (!open || !save(file)) std::abort();
  };
  Compare(
      state, profile, [&] { write([&](CNvxFile& file) { return file.Write(bytes.Get(), size) == size; }); },
      [&] { write([&](CNvxFile& file) { return profile.Save(file); }); });
}
BENCHMARK(QpfSaveWithoutDisk)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
