// A run of bytes that several owners may hold without a copy of it for each.
#pragma once

#include <nvxprofile/export.h>

#include <cstdint>
#include <memory>
#include <span>

namespace nvx {

// A value like any other: a copy has bytes of its own, and whoever writes changes nobody else's. What View gives refers
// to the same block until one of the two is written to, which then gets its own. Reading writes to nothing, so that
// any number of threads may read; none of the others is safe beside another call on the same object.
//
// Blocks come from malloc and end with the last object that refers to them. Allocation throws std::bad_alloc.
class NVX_EXPORT SharedBytes {
 public:
  SharedBytes() = default;
  explicit SharedBytes(std::span<const std::uint8_t> bytes);  // copies them
  SharedBytes(const SharedBytes& other) : SharedBytes(other.Bytes()) {}
  SharedBytes& operator=(const SharedBytes& other);
  SharedBytes(SharedBytes&& other) noexcept;
  SharedBytes& operator=(SharedBytes&& other) noexcept;
  ~SharedBytes() = default;

  // A block of `size` bytes, uninitialised.
  static SharedBytes Allocate(std::uint32_t size);
  // Takes over a malloc'ed block; null is an empty object.
  static SharedBytes Adopt(std::uint8_t* block, std::uint32_t size);

  // Null for an object that never had a block.
  const std::uint8_t* Data() const { return block_.get(); }
  std::uint32_t Size() const { return size_; }
  bool IsEmpty() const { return size_ == 0; }
  std::span<const std::uint8_t> Bytes() const { return {block_.get(), size_}; }

  // The bytes for writing, which nobody else sees from then on.
  std::uint8_t* Writable();

  // `size` bytes from `offset` on, both inside this object, in the same block.
  SharedBytes View(std::uint32_t offset, std::uint32_t size);
  // The same for bytes that this object and all others leave alone from then on: whoever gets them may write to them.
  SharedBytes Part(std::uint32_t offset, std::uint32_t size) const;

  // Forgets all bytes behind the first `size`.
  void Shorten(std::uint32_t size);

 private:
  std::shared_ptr<std::uint8_t> block_;  // from the first byte on
  std::uint32_t size_ = 0;
  bool isViewed_ = false;  // somebody else may look at the same bytes
};

}  // namespace nvx
