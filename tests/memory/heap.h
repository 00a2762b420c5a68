// The heap of the memory tests: every allocation of the library passes here, so that it can be counted or refused.
// operator new is replaced, and the linker wraps malloc, calloc, realloc and free (see CMakeLists.txt).
#pragma once

#include <cstddef>

namespace nvx::test::heap {

// Bytes in use now, and the most that were in use since ResetPeak.
std::size_t InUse();
std::size_t Peak();
void ResetPeak();

// The most bytes that were in use while `run` ran, over those in use before.
template <class Run>
std::size_t PeakOf(Run run) {
  const std::size_t before = InUse();
  ResetPeak();
  run();
  return Peak() - before;
}

// Allocations since ResetCount.
std::size_t Count();
void ResetCount();

// Allocations of `run`.
template <class Run>
std::size_t CountOf(Run run) {
  ResetCount();
  run();
  return Count();
}

// Refuses the allocation of that number, counted from now (0 is the next one), and all behind it until Recover.
void FailFrom(std::size_t number);
void Recover();

}  // namespace nvx::test::heap
