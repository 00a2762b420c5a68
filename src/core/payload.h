// The one pattern by which entries turn their buffer into a payload and back.
#pragma once

#include "core/stream.h"

#include <nvxprofile/file.h>
#include <nvxprofile/profile_entry.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
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

// A stream over an entry's buffer, which stays the entry's.
class EntryStream : public CNvxMemFile {
 public:
  explicit EntryStream(CProfileDataEntry& entry) : CNvxMemFile(entry.GetRefBuffer(), entry.GetSize()) {
    SetDiagnosis(entry.GetDiagnosis());
  }
};

// Runs load(stream) over the buffer; false for an empty one.
template <class Load>
bool ParseBuffer(CProfileDataEntry& entry, Load&& load) {
  if (entry.GetSize() == 0) return false;
  EntryStream stream(entry);
  return load(stream);
}

// How long a rebuilt buffer is: as long as its form, or as long as the block of a memory stream that the form was
// written to, the smallest multiple of 1024 that holds it, with zeros behind the form.
enum class BufferLength { kExact, kCapacity };

// Runs save(stream) into a new block made for a form of `size` bytes and gives the block to the entry. On false the
// entry's buffer stays as it was.
template <class Save>
bool RebuildBuffer(CProfileDataEntry& entry, std::uint64_t size, BufferLength length, Save&& save) {
  constexpr std::uint64_t kStep = 1024;
  const std::uint64_t rounded = size == 0 ? kStep : (size + kStep - 1) / kStep * kStep;
  const std::uint64_t capacity = length == BufferLength::kExact ? size : rounded;
  if (capacity > std::numeric_limits<std::uint32_t>::max()) return false;
  Block block = AllocateBlock(static_cast<std::size_t>(capacity));
  std::memset(block.get() + size, 0, static_cast<std::size_t>(capacity - size));
  CNvxMemFile stream(block.get(), static_cast<std::uint32_t>(capacity));
  if (!save(stream) || stream.GetPosition() != size) return false;
  entry.AttachBuffer(block.release(), static_cast<std::uint32_t>(capacity));
  return true;
}

}  // namespace nvx
