// Byte sequences written down by hand, field by field.
#pragma once

#include "support/files.h"

#include <cstdint>
#include <string_view>

namespace nvx::test {

class ByteBuilder {
 public:
  ByteBuilder& U8(std::uint32_t value) { return Little(value, 1); }
  ByteBuilder& U16(std::uint32_t value) { return Little(value, 2); }
  ByteBuilder& U32(std::uint32_t value) { return Little(value, 4); }
  ByteBuilder& U64(std::uint64_t value) { return Little(value, 8); }
  ByteBuilder& I32(std::int32_t value) { return U32(static_cast<std::uint32_t>(value)); }
  // The characters, and zeros up to `width` bytes.
  ByteBuilder& Text(std::string_view text, std::size_t width = 0) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return width > text.size() ? Zero(width - text.size()) : *this;
  }
  // UTF-16, and zeros up to `width` characters.
  ByteBuilder& Wide(std::u16string_view text, std::size_t width = 0) {
    for (const char16_t c : text) U16(c);
    return width > text.size() ? Zero(2 * (width - text.size())) : *this;
  }
  ByteBuilder& Zero(std::size_t count) { return Fill(0, count); }
  ByteBuilder& Fill(std::uint8_t value, std::size_t count) {
    bytes_.insert(bytes_.end(), count, value);
    return *this;
  }
  ByteBuilder& Append(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }

  const Bytes& Take() const { return bytes_; }
  operator const Bytes&() const { return bytes_; }
  std::size_t Size() const { return bytes_.size(); }

 private:
  ByteBuilder& Little(std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    return *this;
  }

  Bytes bytes_;
};

// The bytes with a number of 32 bits at an offset, least significant byte first.
inline Bytes With(Bytes bytes, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
  return bytes;
}

}  // namespace nvx::test
