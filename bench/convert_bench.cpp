// Converting 100 legacy profiles on two threads against one, and the conversion table's part of a load.
#include "timing.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/text_conversion.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using nvx::bench::Quickest;

namespace fs = std::filesystem;

constexpr int kProfiles = 100;
constexpr int kRepetitions = 5;

// The example of the repository with its table, and room for results; in memory where the system has a folder for that,
// since a disk's time is not the library's.
class Workshop {
 public:
  Workshop() {
    const fs::path root = fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
    path_ = root / ("nvx-bench-" + std::to_string(std::random_device()()));
    fs::create_directories(path_);
    fs::copy(NVXPROFILE_SOURCE_FOLDER "/examples/legacy", path_);
    ::setenv("NVXPROFILE_PROFILE_DIR", path_.c_str(), 1);
  }
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;
  ~Workshop() {
    std::error_code error;
    fs::remove_all(path_, error);
  }
  std::string Narrow(const std::string& name) const { return (path_ / name).string(); }
  std::u16string Wide(const std::string& name) const { return nvx::Utf8ToWide(Narrow(name)); }

 private:
  fs::path path_;
};

void ConvertAll(const Workshop& workshop, int threadCount) {
  const _tagDBDeviceProfileInfo database;
  std::atomic<int> next{0};
  const auto work = [&] {
    for (int i = next++; i < kProfiles; i = next++) {
      CConvertV2ToV3Profile converter;
      if (!converter.ProfileLoad(workshop.Wide("glossy.qpf").c_str())) std::abort();
      converter.SetupModuleVersion(u"1");
      converter.ConvertV2ToV3Profile(&database);
      converter.SaveV3Profile(workshop.Wide("new" + std::to_string(i) + ".icc").c_str());
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < threadCount; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

// ratio: time on two threads over time on one; 0.6 is the most it may be on two idle cores.
void ConvertOnTwoThreads(benchmark::State& state) {
  const Workshop workshop;
  double one = 0;
  double two = 0;
  for (auto _ : state) {
    one = Quickest(kRepetitions, [&] { ConvertAll(workshop, 1); });
    two = Quickest(kRepetitions, [&] { ConvertAll(workshop, 2); });
  }
  state.counters["ratio"] = two / one;
  state.counters["profiles/s"] = kProfiles / two;
}
BENCHMARK(ConvertOnTwoThreads)->Iterations(1)->Unit(benchmark::kMillisecond);

// ratio: a load whose labels stand at the end of a table of a megabyte, over a plain read of that table.
void LoadWithLongTable(benchmark::State& state) {
  const Workshop workshop;
  const std::string table = workshop.Narrow("QPFConvert.qpd");
  std::string text;
  for (int i = 0; text.size() < std::size_t{1} << 20; ++i) {
    text += "[Printer.P" + std::to_string(i) + "]\r\nModelCode=1\r\nModelSubCode=2\r\nInternalCode=3\r\n";
  }
  {
    std::ifstream own(table, std::ios::binary);
    text.append(std::istreambuf_iterator<char>(own), {});
  }
  std::ofstream(table, std::ios::binary) << text;
  const std::u16string path = workshop.Wide("glossy.qpf");
  const auto load = [&] {
    const std::unique_ptr<CProfileFile> format(CProfileFile::CreateProfileFile(path.c_str(), true));
    CProfileData data;
    if (!format || !format->LoadData(path.c_str(), &data, false)) std::abort();
  };
  const auto read = [&] {
    std::string copy(text.size(), '\0');
    std::ifstream(table, std::ios::binary).read(copy.data(), static_cast<std::streamsize>(copy.size()));
    benchmark::DoNotOptimize(copy.data());
  };
  for (auto _ : state) load();
  state.counters["ratio"] = Quickest(kRepetitions, load) / Quickest(kRepetitions, read);
}
BENCHMARK(LoadWithLongTable)->Unit(benchmark::kMillisecond);

}  // namespace
