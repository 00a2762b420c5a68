// nvxprofile diff: what two profiles, or the profiles of two folders, differ in.
#include "command.h"
#include "comparison.h"
#include "files.h"
#include "loading.h"
#include "paths.h"
#include "terminal.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

namespace fs = std::filesystem;

struct DiffOptions {
  std::string a;
  std::string b;
  bool json = false;
};

std::string ValueText(const Json& value) {
  return value.is_null() ? std::string() : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void Print(const std::vector<Difference>& differences) {
  using enum Table::Align;
  Table table({{"place"}, {""}, {"A"}, {"B"}, {"greatest", kRight}, {"of the range", kRight}, {"at"}});
  for (const Difference& difference : differences) {
    const std::string percent =
        difference.percent.is_null() ? "" : fmt::format("{:+.2f} %", difference.percent.get<double>());
    table.Add({difference.place, difference.what, ValueText(difference.a), ValueText(difference.b),
               ValueText(difference.greatest), percent, difference.at});
  }
  table.Print();
}

Json ToJson(const std::vector<Difference>& differences) {
  Json list = Json::array();
  for (const Difference& difference : differences) {
    Json item = {{"place", difference.place}, {"what", difference.what}};
    if (!difference.a.is_null()) item["a"] = difference.a;
    if (!difference.b.is_null()) item["b"] = difference.b;
    if (!difference.greatest.is_null()) item["greatest"] = difference.greatest;
    if (!difference.percent.is_null()) {
      item["percent"] = difference.percent;
      item["at"] = difference.at;
    }
    list.push_back(std::move(item));
  }
  return list;
}

int CompareFiles(const DiffOptions& options) {
  CProfileAccess a;
  CProfileAccess b;
  if (!LoadProfile(options.a, a) || !LoadProfile(options.b, b)) return kFailure;
  const std::vector<Difference> differences = Compare(a, b);
  if (options.json) {
    PrintJson({{"a", options.a}, {"b", options.b}, {"differences", ToJson(differences)}});
  } else if (!differences.empty()) {
    Print(differences);
  }
  return differences.empty() ? kSuccess : kDifferent;
}

// The paths of the files below a folder, seen from the folder and the same on every system, and their sizes.
using SizesOfFiles = std::map<std::string, std::uint64_t>;

void AddFilesBelow(const fs::path& root, const fs::path& folder, SizesOfFiles& files) {
  const std::string path = TextOf(root / folder);
  const FolderItems found = ItemsOf(path);
  if (!found.failure.empty()) throw std::runtime_error(path + ": " + found.failure);
  for (const FolderItem& item : found.items) {
    const fs::path place = folder / PathOf(item.name);
    if (item.isFile) files.emplace(GenericTextOf(place), item.size);
    if (item.isFolder) AddFilesBelow(root, place, files);
  }
}

SizesOfFiles FilesBelow(const std::string& folder) {
  SizesOfFiles files;
  AddFilesBelow(PathOf(folder), {}, files);
  return files;
}

// Compares the files of two folders by their paths, and shows what it finds on the way.
class FolderComparison {
 public:
  explicit FolderComparison(const DiffOptions& options) : options_(options) {}

  int Run() {
    const SizesOfFiles a = FilesBelow(options_.a);
    const SizesOfFiles b = FilesBelow(options_.b);
    SizesOfFiles all = a;
    all.insert(b.begin(), b.end());
    for (const auto& [file, size] : all) {
      if (!b.contains(file)) {
        ShowMissing(file, "only in A");
      } else if (!a.contains(file)) {
        ShowMissing(file, "only in B");
      } else {
        CompareBoth(file, size == b.at(file));
      }
    }
    if (options_.json) PrintJson({{"a", options_.a}, {"b", options_.b}, {"files", std::move(files_)}});
    if (failed_) return kFailure;
    return different_ ? kDifferent : kSuccess;
  }

 private:
  void ShowMissing(const std::string& file, const char* what) {
    different_ = true;
    files_.push_back({{"file", file}, {"what", what}});
    if (!options_.json) PrintLine(fmt::format("{}: {}", Styled(Style::kHeading, file), what));
  }

  // Files of the same bytes are the same, also where they are no profiles.
  void CompareBoth(const std::string& file, bool areOfOneSize) {
    const std::string a = TextOf(PathOf(options_.a) / PathOf(file));
    const std::string b = TextOf(PathOf(options_.b) / PathOf(file));
    if (areOfOneSize && ReadInput(a) == ReadInput(b)) return;
    CProfileAccess left;
    CProfileAccess right;
    if (!LoadProfile(a, left) || !LoadProfile(b, right)) {
      failed_ = true;
      return;
    }
    const std::vector<Difference> differences = Compare(left, right);
    if (differences.empty()) return;
    different_ = true;
    files_.push_back({{"file", file}, {"what", "differs"}, {"differences", ToJson(differences)}});
    if (options_.json) return;
    PrintLine(Styled(Style::kHeading, file) + ": differs");
    Print(differences);
  }

  const DiffOptions& options_;
  Json files_ = Json::array();
  bool different_ = false;
  bool failed_ = false;
};

int Run(const DiffOptions& options) {
  const bool isFolder = IsFolder(options.a);
  if (isFolder != IsFolder(options.b)) {
    PrintErrorOf(isFolder ? options.a : options.b, "is a folder, and the other one is not");
    return kFailure;
  }
  return isFolder ? FolderComparison(options).Run() : CompareFiles(options);
}

}  // namespace

void AddDiffCommand(CommandLine& line) {
  Command command = line.AddCommand("diff", "Tell what two profiles, or the files of two folders, differ in");
  const auto options = std::make_shared<DiffOptions>();
  command.Add("A", &options->a, "A profile, or a folder").Required();
  command.Add("B", &options->b, "Another one").Required();
  command.AddFlag("--json", options->json, "Write one JSON document");
  command.Example("nvxprofile diff yesterday today");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
