// Byte sequences written down by hand, field by field.
#pragma once

#include "support/files.h"

#include <cstdint>
#include <string_view>

namespace nvx::test {

class ByteBuilder {
 public:
  // One number after another.
  ByteBuilder& U8(std::uint32_t value, auto... more) { return Words(1, value, static_cast<std::uint32_t>(more)...); }
  ByteBuilder& U16(std::uint32_t value, auto... more) { return Words(2, value, static_cast<std::uint32_t>(more)...); }
  ByteBuilder& U32(std::uint32_t value, auto... more) { return Words(4, value, static_cast<std::uint32_t>(more)...); }
  ByteBuilder& I32(std::int32_t value, auto... more) {
    U32(static_cast<std::uint32_t>(value));
    if constexpr (sizeof...(more) > 0) I32(more...);
    return *this;
  }
  ByteBuilder& U64(std::uint64_t value) { return Little(8, value); }
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
  ByteBuilder& Little(int size, std::uint64_t value) {
    for (int i = 0; i < size; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    return *this;
  }
  ByteBuilder& Words(int size, std::uint32_t value, auto... more) {
    Little(size, value);
    if constexpr (sizeof...(more) > 0) Words(size, more...);
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
