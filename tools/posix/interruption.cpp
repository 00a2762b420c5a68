#include "interruption.h"

#include <pthread.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the one that POSIX names
#include <unistd.h>

#include <thread>

namespace nvx::tool {
namespace {

[[noreturn]] void EndOf(int signal, ::sigset_t taken) {
  EndAllSaves();
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

}  // namespace nvx::tool
