#include "core/block.h"

#include <nvxprofile/shared_bytes.h>

#include <algorithm>
#include <utility>

namespace nvx {

SharedBytes::SharedBytes(std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return;
  *this = Allocate(static_cast<std::uint32_t>(bytes.size()));
  std::copy(bytes.begin(), bytes.end(), block_.get());
}

SharedBytes& SharedBytes::operator=(const SharedBytes& other) {
  if (this != &other) *this = SharedBytes(other);
  return *this;
}

SharedBytes::SharedBytes(SharedBytes&& other) noexcept
    : block_(std::exchange(other.block_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      isViewed_(std::exchange(other.isViewed_, false)) {}

SharedBytes& SharedBytes::operator=(SharedBytes&& other) noexcept {
  block_ = std::exchange(other.block_, nullptr);
  size_ = std::exchange(other.size_, 0);
  isViewed_ = std::exchange(other.isViewed_, false);
  return *this;
}

SharedBytes SharedBytes::Allocate(std::uint32_t size) { return Adopt(AllocateBlock(size).release(), size); }

SharedBytes SharedBytes::Adopt(std::uint8_t* block, std::uint32_t size) {
  SharedBytes bytes;
  bytes.block_.reset(block, FreeBlock());
  bytes.size_ = block != nullptr ? size : 0;
  return bytes;
}

std::uint8_t* SharedBytes::Writable() {
  if (isViewed_) *this = SharedBytes(Bytes());
  return block_.get();
}

SharedBytes SharedBytes::View(std::uint32_t offset, std::uint32_t size) {
  SharedBytes view = Part(offset, size);
  view.isViewed_ = isViewed_ = true;
  return view;
}

SharedBytes SharedBytes::Part(std::uint32_t offset, std::uint32_t size) const {
  SharedBytes part;
  part.block_ = {block_, block_.get() + offset};
  part.size_ = size;
  return part;
}

void SharedBytes::Shorten(std::uint32_t size) { size_ = std::min(size_, size); }

}  // namespace nvx
