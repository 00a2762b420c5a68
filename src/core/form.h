// The shape that most forms share: a header that counts, a record of each item, a block of each item. Constants of
// records are held against their descriptions here. Rules that are broken are told by the title of the record, "entry
// header: wrong magic", and at the offset of the field.
#pragma once

#include "core/record.h"
#include "core/stream.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvx {

// What findings call a record.
template <class Record>
inline constexpr const char* kTitle = Record::kTitle;

inline bool IsRight(const RecordConstant& constant, const std::uint8_t* bytes) {
  return LoadLittle<std::uint32_t>(bytes + constant.offset) == constant.value;
}

// True if the bytes of a record have the constants of its form.
template <class Record>
bool HasConstants(const std::uint8_t* bytes) {
  const auto constants = kRecordFields<Record>.Constants();
  return std::all_of(constants.begin(), constants.end(),
                     [=](const auto& constant) { return IsRight(constant, bytes); });
}

// Refuses a record that has not, by the first that is wrong; it starts at `start` of the stream.
bool RefuseConstants(CNvxFile& file, std::uint64_t start, std::string_view title,
                     std::span<const RecordConstant> constants, const std::uint8_t* bytes);

template <class Record>
bool CheckConstants(CNvxFile& file, std::uint64_t start, const std::uint8_t* bytes) {
  return HasConstants<Record>(bytes) ||
         RefuseConstants(file, start, kTitle<Record>, kRecordFields<Record>.Constants(), bytes);
}

// Refuse, by the title of a record or a table.
bool RefuseBy(CNvxFile& file, std::string_view title, std::string_view why);
inline bool RefuseCutShort(CNvxFile& file, std::string_view title) { return RefuseBy(file, title, "cut short"); }
inline bool RefuseCount(CNvxFile& file, std::string_view title) {
  return RefuseBy(file, title, "count beyond the end");
}

// The next record of the stream, with the constants of its form. False, with the record as it was, for any other and if
// the stream ends early.
template <class Record>
bool ReadChecked(CNvxFile& file, Record& record) {
  const std::uint32_t start = file.GetPosition();
  RecordBytes<Record> bytes;
  if (!ReadExact(file, bytes.data(), kRecordSize<Record>)) return RefuseCutShort(file, kTitle<Record>);
  if (!CheckConstants<Record>(file, start, bytes.data())) return false;
  record = DecodeRecord<Record>(bytes.data());
  return true;
}

// Records one behind the other. Those of a memory stream stay where they are, and its block must outlive the table.
template <class Record>
class RecordTable {
 public:
  static constexpr std::uint32_t kSize = kRecordSize<Record>;

  // The next `count` records of a stream that has at least `bodySize` more bytes for each.
  bool Read(CNvxFile& file, std::uint32_t count, std::string_view title, std::uint32_t bodySize = 0) {
    count_ = 0;
    start_ = file.GetPosition();
    if (!Holds(file, count, std::uint64_t{kSize} + bodySize)) return RefuseCount(file, title);
    bytes_.emplace(file, count * kSize);
    if (!bytes_->IsWhole()) return RefuseCutShort(file, title);
    count_ = count;
    return true;
  }

  // False, with the reason, if one of them does not have the constants of its form.
  bool Check(CNvxFile& file) const {
    for (std::uint32_t i = 0; i < count_; ++i) {
      if (!CheckConstants<Record>(file, OffsetOf(i), BytesAt(i))) return false;
    }
    return true;
  }

  std::uint32_t Count() const { return count_; }
  Record At(std::uint32_t index) const { return DecodeRecord<Record>(BytesAt(index)); }
  std::vector<Record> All() const {
    std::vector<Record> records;
    records.reserve(count_);
    for (std::uint32_t i = 0; i < count_; ++i) records.push_back(At(i));
    return records;
  }
  const std::uint8_t* BytesAt(std::uint32_t index) const { return &bytes_->Data()[std::size_t{index} * kSize]; }
  // Where a record stands in the stream.
  std::uint64_t OffsetOf(std::uint32_t index) const { return start_ + std::uint64_t{index} * kSize; }

 private:
  std::optional<StreamBlock> bytes_;
  std::uint32_t start_ = 0;
  std::uint32_t count_ = 0;
};

// Writes a form of that shape.
template <class Header, class Items, class RecordOf, class WriteBlock>
bool WriteForm(CNvxFile& file, const Header& header, const Items& items, RecordOf recordOf, WriteBlock writeBlock) {
  return WriteRecord(file, header) &&
         std::all_of(items.begin(), items.end(), [&](auto* item) { return WriteRecord(file, recordOf(*item)); }) &&
         std::all_of(items.begin(), items.end(), [&](auto* item) { return writeBlock(*item); });
}

}  // namespace nvx
