#include "interruption.h"

#include <fmt/format.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>

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
    fs::remove_all(folder, error);
    if (!error) return;
  }
}

// The locks are never given back: nothing begins any more.
[[noreturn]] void EndOf(int signal, ::sigset_t taken) {
  All().saves.lock();
  All().mutex.lock();
  for (const std::string& folder : All().folders) Remove(folder);
  ::signal(signal, SIG_DFL);
  ::pthread_sigmask(SIG_UNBLOCK, &taken, nullptr);
  ::raise(signal);
  ::_exit(128 + signal);
}

bool IsIgnored(int signal) {
  struct ::sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void CleanUpWhenInterrupted() {
  ::sigset_t taken;
  ::sigemptyset(&taken);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!IsIgnored(signal)) ::sigaddset(&taken, signal);
  }
  ::pthread_sigmask(SIG_BLOCK, &taken, nullptr);
  std::thread([taken] {
    int signal = 0;
    while (::sigwait(&taken, &signal) != 0) continue;
    EndOf(signal, taken);
  }).detach();
}

SaveUnderWay::SaveUnderWay() : lock_(All().saves) {}

WorkFolder::WorkFolder() : path_((fs::temp_directory_path() / ".nvx-XXXXXX").string()) {
  const std::lock_guard lock(All().mutex);
  if (::mkdtemp(path_.data()) == nullptr) {
    const int error = errno;
    throw std::runtime_error(fmt::format("no folder can be made in {}: {}", fs::path(path_).parent_path().string(),
                                         std::system_category().message(error)));
  }
  All().folders.insert(path_);
}

WorkFolder::~WorkFolder() {
  const std::lock_guard lock(All().mutex);
  std::error_code error;
  fs::remove_all(path_, error);
  All().folders.erase(path_);
}

}  // namespace nvx::tool
