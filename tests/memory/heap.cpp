#include "memory/heap.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace {

constexpr std::size_t kNever = static_cast<std::size_t>(-1);

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> peak{0};
std::atomic<std::size_t> count{0};
std::atomic<std::size_t> failAt{kNever};

bool Refused() { return count++ >= failAt; }

void* Took(void* block) {
  if (block == nullptr) return nullptr;
  const std::size_t now = inUse += ::malloc_usable_size(block);
  std::size_t most = peak;
  while (now > most && !peak.compare_exchange_weak(most, now)) {
  }
  return block;
}

void Gives(void* block) {
  if (block != nullptr) inUse -= ::malloc_usable_size(block);
}

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size) { return Refused() ? nullptr : Took(__real_malloc(size)); }

void* __wrap_calloc(std::size_t number, std::size_t size) {
  return Refused() ? nullptr : Took(__real_calloc(number, size));
}

void* __wrap_realloc(void* block, std::size_t size) {
  if (Refused()) return nullptr;
  Gives(block);
  return Took(__real_realloc(block, size));
}

void __wrap_free(void* block) {
  Gives(block);
  __real_free(block);
}

}  // extern "C"

void* operator new(std::size_t size) {
  void* const block = __wrap_malloc(size != 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size != 0 ? size : 1); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size != 0 ? size : 1); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block, std::size_t) noexcept { __wrap_free(block); }

namespace nvx::test::heap {

std::size_t InUse() { return inUse; }
std::size_t Peak() { return peak; }
void ResetPeak() { peak = inUse.load(); }
std::size_t Count() { return count; }
void ResetCount() { count = 0; }

void FailFrom(std::size_t number) {
  count = 0;
  failAt = number;
}

void Recover() { failAt = kNever; }

}  // namespace nvx::test::heap
