// Loading and saving a whole profile of the current generation, of the usual size and a large one, against nothing but
// moving its bytes: a load against reading the file into memory that is fresh, or was in use before, a save against
// putting the same bytes in the place of the file. The memory that both take is watched by a test.
#include "../tests/support/sample_profile.h"
#include "core/replacing_file.h"
#include "formats/qpf_tags.h"
#include "timing.h"

#include <nvxprofile/icc_profile.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using nvx::bench::GiveFreePagesBack;
using nvx::bench::Median;
using nvx::bench::ProcessorSeconds;
using nvx::test::SampleSize;

class ProfileOnDisk {
 public:
  explicit ProfileOnDisk(SampleSize size = SampleSize::kUsual) {
    nvx::test::FillSampleProfile(data_, size);
    if (!Save(widePath_)) std::abort();
  }
  ~ProfileOnDisk() { std::filesystem::remove(path_); }

  bool Save(const std::u16string& path) {
    return CProfileFileQPFv4().SaveData(path.c_str(), &data_, nvx::kSaveReplaceProfile | nvx::kSaveCalibration);
  }
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

// What the work gives is destroyed outside of its time.
template <class Work>
double SecondsToMake(Work&& work) {
  using Made = decltype(work());
  if constexpr (std::is_void_v<Made>) {
    return ProcessorSeconds(work);
  } else {
    std::optional<Made> made;
    return ProcessorSeconds([&] { made.emplace(work()); });
  }
}

// Runs both in turns; the ratio is that of their medians. What `prepare` gives to the work takes no part in its time.
// The heap has no free pages then, as in a process that loads its first profile: to get pages is the better part of a
// load.
template <class Plain, class Prepare, class Work>
void Compare(benchmark::State& state, const ProfileOnDisk& profile, Plain plain, Prepare prepare, Work work) {
  std::vector<double> plainTimes;
  std::vector<double> workTimes;
  for (auto _ : state) {
    plainTimes.push_back(SecondsToMake(plain));
    auto subject = prepare();
    workTimes.push_back(SecondsToMake([&] { return work(subject); }));
    state.SetIterationTime(workTimes.back());
  }
  state.counters["plain_ms"] = 1e3 * Median(plainTimes);
  state.counters["ratio"] = Median(workTimes) / Median(plainTimes);
  state.counters["bytes"] = static_cast<double>(profile.Size());
}

std::unique_ptr<FreshBlock> FreshCopy(const ProfileOnDisk& profile) {
  auto block = std::make_unique<FreshBlock>(profile.Size());
  Read(profile, *block);
  return block;
}

std::unique_ptr<CProfileAccess> Loaded(const ProfileOnDisk& profile) {
  auto access = std::make_unique<CProfileAccess>();
  CError error;
  if (!access->Init(profile.WidePath().c_str(), &error)) std::abort();
  return access;
}

int PrepareFreshHeap() {
  GiveFreePagesBack();
  return 0;
}

// As in a process that loads its first profile.
void QpfInit(benchmark::State& state, SampleSize size) {
  const ProfileOnDisk profile(size);
  Compare(
      state, profile, [&] { return FreshCopy(profile); }, PrepareFreshHeap, [&](int) { return Loaded(profile); });
}
BENCHMARK_CAPTURE(QpfInit, Usual, SampleSize::kUsual)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(QpfInit, Large, SampleSize::kLarge)->UseManualTime()->Unit(benchmark::kMillisecond);

// As in a server that has loaded profiles before: neither has to get pages from the system.
void QpfInitAgain(benchmark::State& state, SampleSize size) {
  nvx::bench::KeepFreePages();
  const ProfileOnDisk profile(size);
  const FreshBlock bytes(profile.Size());
  Read(profile, bytes);
  Loaded(profile);
  Compare(
      state, profile, [&] { Read(profile, bytes); }, [] { return 0; }, [&](int) { return Loaded(profile); });
}
BENCHMARK_CAPTURE(QpfInitAgain, Usual, SampleSize::kUsual)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(QpfInitAgain, Large, SampleSize::kLarge)->UseManualTime()->Unit(benchmark::kMillisecond);

// The steps of that load, each against reading the whole file, so that they add up to nearly the ratio of the load.
// What they leave out is making the entries and putting the ICC frame together.
template <class Prepare, class Work>
void CompareStep(benchmark::State& state, const ProfileOnDisk& profile, Prepare prepare, Work work) {
  Compare(
      state, profile, [&] { return FreshCopy(profile); },
      [&] {
        auto subject = prepare();
        GiveFreePagesBack();
        return subject;
      },
      work);
}

void QpfLoadStepDetect(benchmark::State& state) {
  const ProfileOnDisk profile;
  CompareStep(state, profile, PrepareFreshHeap, [&](int) {
    const std::unique_ptr<CProfileFile> format(CProfileFile::CreateProfileFile(profile.WidePath().c_str(), true));
    if (!format || format->GetMyFormat() != CProfileFileQPFv3().GetMyFormat()) std::abort();
  });
}
BENCHMARK(QpfLoadStepDetect)->UseManualTime()->Unit(benchmark::kMillisecond);

void QpfLoadStepRead(benchmark::State& state) {
  const ProfileOnDisk profile;
  CompareStep(
      state, profile, [] { return std::make_unique<CICCProfile>(); },
      [&](const std::unique_ptr<CICCProfile>& frame) {
        CNvxFile file;
        const bool open = file.Open(profile.WidePath().c_str(), nvx::kGenericRead, nvx::kShareRead, nvx::kOpenExisting);
        if (!open || !frame->OpenStream(file, nvx::kPrivateTags)) std::abort();
      });
}
BENCHMARK(QpfLoadStepRead)->UseManualTime()->Unit(benchmark::kMillisecond);

using Entries = std::vector<std::unique_ptr<CProfileDataEntry>>;

// The entries that a load parses, as it has them before: with their bytes alone.
Entries UnparsedEntries(CProfileData& data) {
  Entries entries;
  for (bool more = data.GetEntryStartPos(); more;) {
    CProfileDataEntry* const from = data.GetNextEntry(more);
    if (from->GetUsedType() == CProfileDataEntry::kReplaceProfile) continue;
    const auto usedType = static_cast<CProfileDataEntry::UsedType>(from->GetUsedType());
    entries.emplace_back(CProfileDataEntry::CreateDataEntry(usedType));
    std::copy_n(from->GetRefBuffer(), from->GetSize(), entries.back()->GetBuffer(from->GetSize()));
  }
  return entries;
}

void Parse(const Entries& entries) {
  for (const auto& entry : entries) {
    if (!entry->BufferToData()) std::abort();
  }
}

void QpfLoadStepParse(benchmark::State& state) {
  const ProfileOnDisk profile;
  const auto access = Loaded(profile);
  CompareStep(
      state, profile, [&] { return UnparsedEntries(*access->GetProfileData()); }, Parse);
}
BENCHMARK(QpfLoadStepParse)->UseManualTime()->Unit(benchmark::kMillisecond);

// Curves and the colour table alone: masks keep the buffer that they came in.
void QpfLoadStepRebuildBuffers(benchmark::State& state) {
  const ProfileOnDisk profile;
  const auto access = Loaded(profile);
  CompareStep(
      state, profile,
      [&] {
        Entries entries = UnparsedEntries(*access->GetProfileData());
        std::erase_if(entries, [](const auto& entry) {
          return entry->GetUsedType() == CProfileDataEntry::kMaskDownloadIncludePattern ||
                 entry->GetUsedType() == CProfileDataEntry::kIcm;
        });
        Parse(entries);
        return entries;
      },
      [](const Entries& entries) {
        for (const auto& entry : entries) entry->DataToBuffer();
      });
}
BENCHMARK(QpfLoadStepRebuildBuffers)->UseManualTime()->Unit(benchmark::kMillisecond);

void QpfSave(benchmark::State& state, int (*prepare)()) {
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
      prepare,
      [&](int) {
        if (!profile.Save(profile.WidePath())) std::abort();
      });
}
BENCHMARK_CAPTURE(QpfSave, IntoFreshMemory, PrepareFreshHeap)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(QpfSave, IntoUsedMemory, [] { return 0; })->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
