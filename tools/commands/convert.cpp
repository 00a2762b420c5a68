// nvxprofile convert: text-headed profiles into those of the current generation, many at once.
#include "command.h"
#include "files.h"
#include "interruption.h"
#include "loading.h"
#include "paths.h"
#include "progress.h"
#include "terminal.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/entry_types.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace nvx::tool {
namespace {

namespace fs = std::filesystem;

// Characters that the profile has room for.
constexpr std::size_t kLongestVersion = 9;

struct ConvertOptions {
  std::vector<std::string> files;
  std::string output;
  std::string moduleVersion;
  std::vector<std::int32_t> databaseKeys;
  unsigned jobs = std::max(1u, std::thread::hardware_concurrency());
};

struct Job {
  fs::path source;
  fs::path target;
  bool isNamed = false;  // the target by the user, and not after its source
};

std::u16string Wide(const fs::path& path) { return PathToWide(TextOf(path)); }

// The database record of a conversion: the caller's values, or none and the halftone method of the old profile.
_tagDBDeviceProfileInfo DatabaseRecord(const ConvertOptions& options, const _tagDeviceProfileInfo& source) {
  _tagDBDeviceProfileInfo record{{-1, -1, -1, -1, -1}, source.HalftoneCode};
  if (options.databaseKeys.empty()) return record;
  std::copy_n(options.databaseKeys.begin(), std::size(record.DatabaseKey), record.DatabaseKey);
  record.HalftoneCode = options.databaseKeys.back();
  return record;
}

// The saved file loads and has each entry of the converted profile.
bool IsComplete(const fs::path& path, CConvertV2ToV3Profile& converter) {
  CProfileAccess access;
  CError error;
  if (!access.Init(Wide(path).c_str(), &error) || !access.IsV3Route()) return false;
  for (std::uint32_t type = CProfileDataEntry::kModel; type <= CProfileDataEntry::kSpecialColorInfo; ++type) {
    const bool wanted = converter.GetProfileDataEntry_V3(type) != nullptr;
    if (wanted != (access.GetProfileData()->GetProfileDataEntryFromList(type) != nullptr)) return false;
  }
  return true;
}

// Why the conversion failed; empty if it did not. The result is made and looked at before it takes the target's place.
std::string Convert(const Job& job, const ConvertOptions& options, std::string& made) {
  const InputFile input(TextOf(job.source));
  if (!input.Failure().empty()) return input.Failure();
  const std::u16string& source = input.Path();
  const std::unique_ptr<CProfileFile> format(CProfileFile::CreateProfileFile(source.c_str(), true));
  CProfileData header;
  if (!format) return WhyNotLoaded(source);
  if (!FindFormatType(format->GetMyFormat())->isConverted) return "is no text-headed profile";
  if (!format->LoadData(source.c_str(), &header, true)) return WhyNotLoaded(source);

  CConvertV2ToV3Profile converter;
  if (!converter.ProfileLoad(source.c_str())) return WhyNotLoaded(source);
  if (converter.GetProfileDataEntry_V2(CProfileDataEntry::kIcm) == nullptr) return "has no ICC profile entry";
  converter.SetupModuleVersion(Utf8ToWide(options.moduleVersion).c_str());
  const _tagDBDeviceProfileInfo database = DatabaseRecord(options, *header.GetProfileInfo());
  if (!converter.ConvertV2ToV3Profile(&database)) {
    return "has an entry that can be read only in part, and what it holds besides would be lost; validate tells where";
  }

  // Its name goes into the profile as its description, so it is the target's from the start.
  const WorkFolder folder;
  const fs::path file = PathOf(folder.File(OwnNameOf(TextOf(job.target))));
  if (!converter.SaveV3Profile(Wide(file).c_str()))
    return "cannot be saved: the ICC profile entry is no usable profile, or the disk is full";
  if (!IsComplete(file, converter)) return "the result does not load: " + WhyNotLoaded(Wide(file));
  made = ReadInput(TextOf(file));
  return {};
}

std::string ConvertAndWrite(const Job& job, const ConvertOptions& options) {
  std::string made;
  if (std::string failure = Convert(job, options, made); !failure.empty()) return failure;
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(made.data()), made.size());
  job.isNamed ? WriteOutput(TextOf(job.target), bytes) : WriteFile(TextOf(job.target), bytes);
  return {};
}

// Runs the jobs on several threads and tells of each one, on the calling thread, when it is done.
class Workers {
 public:
  Workers(const std::vector<Job>& jobs, const ConvertOptions& options) : jobs_(jobs) {
    const std::size_t count = std::min<std::size_t>(options.jobs, jobs.size());
    for (std::size_t i = 0; i < count; ++i) threads_.emplace_back([this, &options] { Work(options); });
  }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers() {
    for (std::thread& thread : threads_) thread.join();
  }

  struct Outcome {
    std::size_t job = 0;
    std::string failure;
  };
  // Waits for the next job to be done.
  Outcome Next() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !outcomes_.empty(); });
    Outcome outcome = std::move(outcomes_.front());
    outcomes_.pop_front();
    return outcome;
  }

 private:
  void Work(const ConvertOptions& options) {
    for (std::size_t i = next_++; i < jobs_.size(); i = next_++) {
      Outcome outcome{i, {}};
      try {
        outcome.failure = ConvertAndWrite(jobs_[i], options);
      } catch (const std::exception& error) {
        outcome.failure = error.what();
      }
      const std::lock_guard lock(mutex_);
      outcomes_.push_back(std::move(outcome));
      changed_.notify_one();
    }
  }

  const std::vector<Job>& jobs_;
  std::atomic<std::size_t> next_{0};
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Outcome> outcomes_;
  std::vector<std::thread> threads_;
};

// What goes where; nothing, with the reason told, if two files would meet.
std::optional<std::vector<Job>> Plan(const ConvertOptions& options) {
  const fs::path output = PathOf(options.output);
  const bool isFolder = IsFolder(options.output);
  const bool toStandard = options.output == kStandardStream;
  if (toStandard && options.files.size() > 1) {
    PrintError("only one profile can go to standard output");
    return std::nullopt;
  }
  if (toStandard) return std::vector<Job>{{PathOf(options.files.front()), output, true}};
  const bool toFolder = isFolder || options.files.size() > 1 || !output.has_filename();
  if (const std::string why = toFolder ? MakeFolders(options.output) : ""; !why.empty()) {
    PrintError(fmt::format("{}: {}", options.output, why));
    return std::nullopt;
  }
  std::vector<Job> jobs;
  // What each name is taken for, so that no file is lost to another one.
  std::map<std::string, std::string> taken;
  for (const std::string& file : options.files) taken.emplace(CanonicalName(file), "a source");
  for (const std::string& file : options.files) {
    const fs::path target = toFolder ? output / PathOf(file).filename().replace_extension(".icc") : output;
    const auto [place, isFree] = taken.emplace(CanonicalName(TextOf(target)), "the target of " + file);
    if (!isFree) {
      PrintError(fmt::format("{}: would go to {}, which is {}", file, TextOf(target), place->second));
      return std::nullopt;
    }
    jobs.push_back({PathOf(file), target, !toFolder});
  }
  return jobs;
}

int Run(const ConvertOptions& options) {
  const std::optional<std::vector<Job>> jobs = Plan(options);
  if (!jobs) return kUsage;
  std::size_t failures = 0;
  {
    const ProgressBar bar(jobs->size());
    Workers workers(*jobs, options);
    for (std::size_t done = 1; done <= jobs->size(); ++done) {
      const Workers::Outcome outcome = workers.Next();
      if (!outcome.failure.empty()) {
        ++failures;
        bar.Clear();
        PrintError(fmt::format("{}: {}", TextOf((*jobs)[outcome.job].source), outcome.failure));
      }
      bar.Show(done);
    }
  }
  if (options.output != kStandardStream) {
    PrintLine(fmt::format("{} of {} profiles converted", jobs->size() - failures, jobs->size()));
  }
  return failures == 0 ? kSuccess : kFailure;
}

}  // namespace

void AddConvertCommand(CommandLine& line) {
  Command command = line.AddCommand("convert", "Convert text-headed profiles to the current generation");
  const auto options = std::make_shared<ConvertOptions>();
  command.AddFiles("OLD", options->files, "Text-headed profiles, of version 1 or 2").Required();
  command
      .Add("-o,--output", &options->output,
           "The new profile; for several, the folder of the new ones, each named after its old one with .icc")
      .Required()
      .Type("FILE|DIR");
  command.Add("--module-version", &options->moduleVersion, "Version of the making program, at most 9 characters")
      .Required()
      .Check([](const std::string& version) {
        return Utf8ToWide(version).size() <= kLongestVersion ? std::string() : "at most 9 characters are kept";
      })
      .Type("V");
  command
      .Add("--database-keys", &options->databaseKeys,
           "Five database keys and the halftone method, joined by commas; without it -1 each, and the method of "
           "the old profile")
      .Separated()
      .Count(6)
      .Type("A,B,C,D,E,F");
  command.Add("-j,--jobs", &options->jobs, "Files to convert at the same time").Between(1, 256).Type("N");
  command.Example("nvxprofile convert old/*.qpf -o new --module-version 2.1");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
