// A second reader of the current generation, which shares nothing with the library's: it judges what a save wrote.
#pragma once

#include "support/qpf_builder.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace nvx::test {

// Throws where a rule of the ICC frame or of the private tags is broken. Files that others wrote need not lie on 4-byte
// boundaries.
class QpfReader {
 public:
  enum class Frame { kOurs, kForeign };

  explicit QpfReader(const Bytes& file, Frame frame = Frame::kOurs) : file_(file) {
    Demand(file.size() >= 132 && (Big(0) == file.size() || frame == Frame::kForeign), "size field");
    Demand(Text(36) == "acsp", "signature");
    for (std::uint32_t i = 0; i < Big(128); ++i) {
      const std::size_t line = 132 + 12 * std::size_t{i};
      Demand(Big(line + 4) % 4 == 0 || frame == Frame::kForeign, "boundary");
      Demand(std::size_t{Big(line + 4)} + Big(line + 8) <= file.size(), "tag data");
      const auto start = file.begin() + static_cast<std::ptrdiff_t>(Big(line + 4));
      Demand(tags_.emplace(Text(line), Bytes(start, start + static_cast<std::ptrdiff_t>(Big(line + 8)))).second,
             "tag twice");
      offsets_[Text(line)] = Big(line + 4);
    }
  }

  const std::map<std::string, Bytes>& Tags() const { return tags_; }
  std::size_t OffsetOf(const std::string& tag) const { return offsets_.at(tag); }
  bool Has(const std::string& tag) const { return tags_.count(tag) != 0; }
  Bytes Tag(const std::string& tag) const { return tags_.at(tag); }

  // The entries of NVX1.
  std::vector<StoredEntry> Entries() const {
    const Bytes tag = Tag("NVX1");
    Demand(tag.size() % 4 == 0 && tag.size() >= 400, "entry tag");
    const std::uint32_t count = Little(tag, 104);
    std::vector<StoredEntry> entries;
    std::size_t body = 400 + 292 * std::size_t{count};
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::size_t header = 400 + 292 * std::size_t{i};
      const std::uint32_t size = Little(tag, header + 16);
      Demand(Is(tag, header, "IHEP") && Is(tag, body, "SDEP") && body + size <= tag.size(), "entry");
      StoredEntry entry{Little(tag, header + 8), Little(tag, header + 12)};
      entry.complete = Little(tag, header + 20);
      entry.optionInfo = Little(tag, header + 24);
      entry.label = std::string(reinterpret_cast<const char*>(tag.data()) + header + 28);
      entry.bytes.assign(tag.begin() + static_cast<std::ptrdiff_t>(body + 4),
                         tag.begin() + static_cast<std::ptrdiff_t>(body + size));
      body += size;
      entries.push_back(std::move(entry));
    }
    Demand(tag.size() - body < 4 && std::count(tag.begin() + static_cast<std::ptrdiff_t>(body), tag.end(), 0) ==
                                        static_cast<std::ptrdiff_t>(tag.size() - body),
           "padding");
    return entries;
  }

  // The bytes behind the opening of NVX3 to NVX7.
  Bytes Body(const std::string& name) const {
    const Bytes tag = Tag(name);
    Demand(tag.size() >= 12 && std::equal(tag.begin(), tag.begin() + 12, "data\0\0\0\0\0\0\0\1"), "opening");
    return Bytes(tag.begin() + 12, tag.end());
  }

 private:
  static void Demand(bool holds, const char* rule) {
    if (!holds) throw std::runtime_error(rule);
  }
  static bool Is(const Bytes& bytes, std::size_t offset, const std::string& text) {
    return offset + 4 <= bytes.size() &&
           std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  static std::uint32_t Little(const Bytes& bytes, std::size_t offset) {
    Demand(offset + 4 <= bytes.size(), "number");
    return bytes[offset] | static_cast<std::uint32_t>(bytes[offset + 1]) << 8 |
           static_cast<std::uint32_t>(bytes[offset + 2]) << 16 | static_cast<std::uint32_t>(bytes[offset + 3]) << 24;
  }
  std::uint32_t Big(std::size_t offset) const { return __builtin_bswap32(Little(file_, offset)); }
  std::string Text(std::size_t offset) const {
    return std::string(reinterpret_cast<const char*>(file_.data()) + offset, 4);
  }

  const Bytes& file_;
  std::map<std::string, Bytes> tags_;
  std::map<std::string, std::size_t> offsets_;
};

}  // namespace nvx::test
