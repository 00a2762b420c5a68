// What the benchmarks measure ratios with. Absolute times go to nobody.
#pragma once

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <vector>

namespace nvx::bench {

template <class Work>
double Seconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Processor time, that of the system included: the disk and other processes are somebody else's.
template <class Work>
double ProcessorSeconds(Work&& work) {
  const auto now = [] {
    timespec time;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  work();
  return now() - start;
}

// Seconds of the quickest of several runs.
template <class Work>
double Quickest(int runs, Work&& work) {
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < runs; ++i) best = std::min(best, Seconds(work));
  return best;
}

inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Leaves a heap without free pages, as in a process that loads its first profile: to get pages is the better part of
// that. Large blocks come straight from the system, as they do by default.
inline void GiveFreePagesBack() {
  constexpr int kDefault = 128 * 1024;
  ::mallopt(M_TRIM_THRESHOLD, kDefault);
  ::mallopt(M_MMAP_THRESHOLD, kDefault);
  ::malloc_trim(0);
}

// Lets the heap keep all pages that were in use before, as in a server that has loaded profiles before.
inline void KeepFreePages() {
  ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  ::mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
}

}  // namespace nvx::bench
