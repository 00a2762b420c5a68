#include "support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0;

}  // namespace

std::size_t nvx::test::AllocationCount() { return allocations; }

void* operator new(std::size_t size) {
  ++allocations;
  if (void* const block = std::malloc(size != 0 ? size : 1)) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
