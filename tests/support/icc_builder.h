// ICC profiles written down tag by tag, and the real ones of this machine.
#pragma once

#include "core/byte_order.h"
#include "support/files.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nvx::test {

// Numbers most significant byte first.
class BigBuilder {
 public:
  BigBuilder& U8(std::uint32_t value, auto... more) { return Big(1, value, static_cast<std::uint32_t>(more)...); }
  BigBuilder& U16(std::uint32_t value, auto... more) { return Big(2, value, static_cast<std::uint32_t>(more)...); }
  BigBuilder& U32(std::uint32_t value, auto... more) { return Big(4, value, static_cast<std::uint32_t>(more)...); }
  BigBuilder& Text(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  BigBuilder& Wide(std::u16string_view text) {
    for (const char16_t c : text) U16(c);
    return *this;
  }
  BigBuilder& Zero(std::size_t count) {
    bytes_.insert(bytes_.end(), count, 0);
    return *this;
  }
  BigBuilder& Append(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  operator const Bytes&() const { return bytes_; }
  std::size_t Size() const { return bytes_.size(); }

 private:
  BigBuilder& Big(int size, std::uint32_t value, auto... more) {
    for (int i = size - 1; i >= 0; --i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    if constexpr (sizeof...(more) > 0) Big(size, static_cast<std::uint32_t>(more)...);
    return *this;
  }

  Bytes bytes_;
};

// 128 bytes: version 2.1 output profile of the colour space.
inline Bytes IccHeaderBytes(std::uint32_t size, std::string_view colorSpace = "CMYK") {
  BigBuilder header;
  header.U32(size).Text("cmm1").U32(0x02100000).Text("prtr").Text(colorSpace).Text("Lab ");
  header.U16(2024, 2, 29, 12, 34, 56).Text("acsp").Text("APPL").U32(0x00000001);
  header.Text("manu").Text("modl").U32(0, 3, 2, 0x0000F6D6, 0x00010000, 0x0000D32D).Text("crea");
  return header.Zero(44);
}

struct IccPart {
  std::string signature;
  std::uint32_t offset = 0;
  std::uint32_t size = 0;
};

// A profile with exactly this tag table and this data behind it; the size field counts it all.
inline Bytes IccBytes(const std::vector<IccPart>& table, const Bytes& data, std::string_view colorSpace = "CMYK") {
  const std::size_t size = 132 + 12 * table.size() + data.size();
  BigBuilder bytes;
  bytes.Append(IccHeaderBytes(static_cast<std::uint32_t>(size), colorSpace));
  bytes.U32(static_cast<std::uint32_t>(table.size()));
  for (const IccPart& part : table) bytes.Text(part.signature).U32(part.offset, part.size);
  return bytes.Append(data);
}

using TagList = std::vector<std::pair<std::string, Bytes>>;

// A profile of these tags, in this order, on 4-byte boundaries.
inline Bytes IccFile(const TagList& tags, std::string_view colorSpace = "CMYK") {
  std::vector<IccPart> table;
  BigBuilder data;
  for (const auto& [signature, bytes] : tags) {
    const auto offset = static_cast<std::uint32_t>(132 + 12 * tags.size() + data.Size());
    table.push_back({signature, offset, static_cast<std::uint32_t>(bytes.size())});
    data.Append(bytes).Zero((4 - bytes.size() % 4) % 4);
  }
  return IccBytes(table, data, colorSpace);
}

// A small profile with a tag of four bytes for each signature.
inline Bytes IccWithTags(const std::vector<std::string>& signatures, std::string_view colorSpace = "CMYK") {
  TagList tags;
  for (const std::string& signature : signatures) tags.emplace_back(signature, BigBuilder().Text(signature));
  return IccFile(tags, colorSpace);
}

inline Bytes Patched(Bytes bytes, std::size_t offset, std::uint32_t value) {
  StoreBig(bytes.data() + offset, value);
  return bytes;
}

// A text description tag.
inline Bytes DescriptionTag(std::string_view ascii) {
  BigBuilder tag;
  tag.Text("desc").U32(0, static_cast<std::uint32_t>(ascii.size() + 1)).Text(ascii).U8(0);
  return tag.U32(0, 0).U16(0).U8(0).Zero(67);
}

}  // namespace nvx::test
