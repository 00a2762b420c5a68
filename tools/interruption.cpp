#include "interruption.h"

#include "paths.h"
#include "system_files.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace nvx::tool {
namespace {

namespace fs = std::filesystem;

// Never destroyed: a signal may come while the process ends.
struct Leftovers {
  std::shared_mutex saves;
  std::mutex mutex;
  std::set<std::string> folders;
};

Leftovers& All() {
  static Leftovers& leftovers = *new Leftovers;
  return leftovers;
}

// Other threads go on writing meanwhile, so a folder may fill again.
void Remove(const std::string& folder) {
  std::error_code error;
  for (int tries = 0; tries < 100; ++tries) {
    fs::remove_all(PathOf(folder), error);
    if (!error) return;
  }
}

}  // namespace

// The locks are never given back: nothing begins any more.
void EndAllSaves() {
  All().saves.lock();
  All().mutex.lock();
  for (const std::string& folder : All().folders) Remove(folder);
}

SaveUnderWay::SaveUnderWay() : lock_(All().saves) {}

WorkFolder::WorkFolder() {
  const std::lock_guard lock(All().mutex);
  const std::string parent = TemporaryFolder();
  int error = 0;
  std::optional<std::string> path = MakeOwnFolder(parent, error);
  if (!path) throw std::runtime_error(fmt::format("no folder can be made in {}: {}", parent, ReasonOf(error)));
  path_ = std::move(*path);
  All().folders.insert(path_);
}

WorkFolder::~WorkFolder() {
  const std::lock_guard lock(All().mutex);
  std::error_code error;
  fs::remove_all(PathOf(path_), error);
  All().folders.erase(path_);
}

}  // namespace nvx::tool
