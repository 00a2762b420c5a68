// The tool on many profiles, each run a process, against a process that does nothing but load them.
#include "../tests/support/sample_profile.h"
#include "timing.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/text_conversion.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Profiles {
 public:
  static constexpr int kCount = 200;

  Profiles() {
    fs::create_directory(folder_);
    CProfileData data;
    nvx::test::FillSampleProfile(data);
    for (int i = 0; i < kCount; ++i) {
      paths_.push_back((folder_ / ("p" + std::to_string(i) + ".icc")).string());
      const std::u16string path = nvx::Utf8ToWide(paths_.back());
      if (!CProfileFileQPFv4().SaveData(path.c_str(), &data, nvx::kSaveReplaceProfile)) std::abort();
    }
  }
  Profiles(const Profiles&) = delete;
  Profiles& operator=(const Profiles&) = delete;
  ~Profiles() { fs::remove_all(folder_); }

  const std::vector<std::string>& Paths() const { return paths_; }

 private:
  fs::path folder_ = fs::temp_directory_path() / ("tool-bench-" + std::to_string(::getpid()));
  std::vector<std::string> paths_;
};

// Processor time of a child process, that of the system included.
template <class Work>
double ChildSeconds(Work work) {
  const ::pid_t child = ::fork();
  if (child == 0) work();
  int status = 0;
  struct ::rusage usage {};
  if (child < 0 || ::wait4(child, &status, 0, &usage) != child || status != 0) std::abort();
  const auto seconds = [](const ::timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

[[noreturn]] void LoadAll(const Profiles& profiles) {
  for (const std::string& path : profiles.Paths()) {
    CProfileAccess access;
    CError error;
    if (!access.Init(nvx::Utf8ToWide(path).c_str(), &error)) ::_exit(1);
  }
  ::_exit(0);
}

[[noreturn]] void RunTool(std::vector<std::string> words, const Profiles& profiles) {
  words.insert(words.begin(), NVXPROFILE_TOOL);
  words.insert(words.end(), profiles.Paths().begin(), profiles.Paths().end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int nowhere = ::open("/dev/null", O_WRONLY);
  if (nowhere >= 0 && ::dup2(nowhere, STDOUT_FILENO) >= 0) ::execv(NVXPROFILE_TOOL, pointers.data());
  ::_exit(127);
}

void ToolOn200Profiles(benchmark::State& state, const std::vector<std::string>& words) {
  const Profiles profiles;
  std::vector<double> loads;
  std::vector<double> runs;
  for (auto _ : state) {
    loads.push_back(ChildSeconds([&] { LoadAll(profiles); }));
    runs.push_back(ChildSeconds([&] { RunTool(words, profiles); }));
    state.SetIterationTime(runs.back());
  }
  state.counters["loads_ms"] = 1e3 * nvx::bench::Median(loads);
  state.counters["ratio"] = nvx::bench::Median(runs) / nvx::bench::Median(loads);
}

void Info(benchmark::State& state) { ToolOn200Profiles(state, {"info"}); }
void InfoJson(benchmark::State& state) { ToolOn200Profiles(state, {"info", "--json"}); }
void Validate(benchmark::State& state) { ToolOn200Profiles(state, {"validate"}); }
BENCHMARK(Info)->Name("ToolInfo")->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(InfoJson)->Name("ToolInfoJson")->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(Validate)->Name("ToolValidate")->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace
