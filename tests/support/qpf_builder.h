// Profiles of the current generation written down by hand: the private tags from their tables, in a bare ICC frame.
#pragma once

#include "support/byte_builder.h"
#include "support/icc_builder.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace nvx::test {

struct StoredEntry {
  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  Bytes bytes = {};
  std::uint32_t complete = 1;
  std::uint32_t optionInfo = 0;
  std::string label = {};
};

inline StoredEntry Placeholder() { return {10, 3, {}, 1, 0, "icc"}; }

// What the tests vary of the header block.
struct StoredHeader {
  std::uint32_t version = 0x00000003;
  std::uint32_t renderingScan = 360;
  std::uint32_t renderingFeed = 540;
  std::uint64_t updateTime = 1700000001;
  std::u16string revision = u"A1B2";
  std::int32_t separateWay = 9;
};

inline ByteBuilder Opening() { return ByteBuilder().Text("data").U32(0).U8(0, 0, 0, 1); }

inline Bytes HeaderBlock(std::size_t entryCount, const StoredHeader& header = {}) {
  ByteBuilder block = Opening();
  block.U32(1234, 5, 67).I32(4, 5, -6, 7).U32(720, 1440);
  block.U32(header.renderingScan, header.renderingFeed).I32(2);
  block.I32(22, 23, 24, 21, 25, 8);
  block.U64(1700000000).U64(header.updateTime);
  block.U32(header.version, static_cast<std::uint32_t>(entryCount), 12345678);
  block.Wide(u"Default", 64).Wide(u"Module", 32).Wide(u"Maker", 32).Wide(header.revision, 4);
  return block.I32(header.separateWay).U16(300).Zero(18);
}

inline Bytes Padded(Bytes bytes) {
  while (bytes.size() % 4 != 0) bytes.push_back(0);
  return bytes;
}

inline Bytes EntryTag(const std::vector<StoredEntry>& entries, const StoredHeader& header = {}) {
  ByteBuilder tag;
  tag.Append(HeaderBlock(entries.size(), header));
  for (const StoredEntry& entry : entries) {
    tag.Text("IHEP").U32(292, entry.usedType, entry.formatType);
    tag.U32(static_cast<std::uint32_t>(entry.bytes.size() + 4), entry.complete, entry.optionInfo);
    tag.Text(entry.label, 264);
  }
  for (const StoredEntry& entry : entries) tag.Text("SDEP").Append(entry.bytes);
  return Padded(tag);
}

inline Bytes MediaTag(const std::vector<std::pair<std::uint16_t, std::u16string>>& names) {
  ByteBuilder tag = Opening().U32(static_cast<std::uint32_t>(names.size()));
  for (const auto& [language, name] : names) tag.U16(language).Wide(name, 64);
  return Padded(tag);
}

// A curve set with one curve of ink 1.
inline Bytes CurveSet(std::uint32_t dataType, const Bytes& samples) {
  ByteBuilder set;
  set.U8(0x20).Text("FCC").U32(32, 0x00010000, 6, 1).Zero(12);
  set.Text("IHEC").U32(132, 1, 2, 3, 4, 255, 0, dataType);
  set.U32(static_cast<std::uint32_t>(samples.size())).Text("Cyan", 92);
  return set.Text("SDEC").Append(samples);
}

// A mask download stream with one block of type 3 or 6.
inline Bytes MaskStream(std::uint32_t type) {
  const std::uint32_t values = type == 3 ? 1 : 0;
  const std::uint32_t bytes = type == 6 ? 164 : 0;
  ByteBuilder stream;
  stream.U32(type == 6 ? 3 : 1, 0, 1, 0, 0);
  stream.Text("TFEW").U32(24, type, 4 + 4 * values + bytes, values, bytes);
  return stream.Text("DFEW").Fill(7, 4 * values + bytes);
}

}  // namespace nvx::test
