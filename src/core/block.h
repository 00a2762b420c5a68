// Blocks of the heap as the published interface passes them on: from malloc, released with free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace nvx {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<std::uint8_t, FreeBlock>;

inline Block AllocateBlock(std::size_t size) {
  Block block(static_cast<std::uint8_t*>(std::malloc(size != 0 ? size : 1)));
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace nvx
