// Records of fixed size. A record describes its fields once, in the order of the file and by the names that its page in
// docs/formats uses, and this header derives its size, its reading and its writing from that, and where its fields lie:
//
//   struct Example {
//     static constexpr const char* kTitle = "example header";
//     std::uint32_t count = 0;
//     char name[64] = {};
//     template <class Self, class Codec>
//     static constexpr void Describe(Self& record, Codec& codec) {
//       codec.Constant("magic", Magic("EXAM"));
//       codec.OwnSize("record size");
//       codec.Number("count", record.count);
//       codec.Text("name", record.name, 40);
//       codec.Reserved(12);
//     }
//   };
//
// Numbers are little-endian, unless a record is passed through the big-endian codecs. Decoding passes over constants:
// whether they are right is a question of its own (core/form.h), since some forms are read whatever they say.
#pragma once

#include "core/byte_order.h"
#include "core/text.h"

#include <nvxprofile/file.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

namespace nvx {

struct RecordField {
  std::string_view name;
  std::size_t offset = 0;
  std::size_t size = 0;  // bytes
};

// A number that the form has always; `offset` is that of its field.
struct RecordConstant {
  std::string_view name;
  std::size_t offset = 0;
  std::uint32_t value = 0;
};

// The fields of a record. Fields of one name that stand one behind the other are slots of one field.
class RecordFields {
 public:
  template <class T>
  constexpr void Number(std::string_view name, const T&) {
    Add(name, sizeof(T));
  }
  template <class Char>
  constexpr void Text(std::string_view name, const Char*, std::size_t width) {
    Add(name, width * sizeof(Char));
  }
  template <class Char>
  constexpr void Units(std::string_view name, const Char*, std::size_t count) {
    Add(name, count * sizeof(Char));
  }
  constexpr void Bytes(std::string_view name, const std::uint8_t*, std::size_t size) { Add(name, size); }
  constexpr void Reserved(std::size_t size) { Add("reserved", size); }
  constexpr void OwnSize(std::string_view name) { Add(name, sizeof(std::uint32_t)); }
  constexpr void Constant(std::string_view name, std::uint32_t value) {
    constants_[constantCount_++] = {name, size_, value};
    Add(name, sizeof value);
  }
  constexpr void Constant(std::string_view name, std::uint32_t value, const std::uint32_t&) { Constant(name, value); }

  constexpr std::size_t Size() const { return size_; }
  constexpr std::span<const RecordField> All() const { return {fields_.data(), count_}; }
  constexpr std::span<const RecordConstant> Constants() const { return {constants_.data(), constantCount_}; }

  // Where the first field of that name starts; a name that no field has does not compile in a constant.
  constexpr std::size_t OffsetOf(std::string_view name) const {
    for (const RecordField& field : All()) {
      if (field.name == name) return field.offset;
    }
    throw std::out_of_range("no field of that name");
  }

 private:
  constexpr void Add(std::string_view name, std::size_t size) {
    if (count_ != 0 && fields_[count_ - 1].name == name) {
      fields_[count_ - 1].size += size;
    } else {
      fields_[count_++] = {name, size_, size};
    }
    size_ += size;
  }

  static constexpr std::size_t kMostFields = 40;
  static constexpr std::size_t kMostConstants = 2;

  std::array<RecordField, kMostFields> fields_{};
  std::array<RecordConstant, kMostConstants> constants_{};
  std::size_t count_ = 0;
  std::size_t constantCount_ = 0;
  std::size_t size_ = 0;
};

template <class Record>
inline constexpr RecordFields kRecordFields = [] {
  RecordFields fields;
  const Record record{};
  Record::Describe(record, fields);
  return fields;
}();

// Bytes of a record in its file.
template <class Record>
inline constexpr std::uint32_t kRecordSize = static_cast<std::uint32_t>(kRecordFields<Record>.Size());

// Codecs that move bytes have no use for names.
using FieldName = const char*;

class RecordEncoder {
 public:
  // `size` is that of the record, for those that tell it.
  explicit RecordEncoder(std::uint8_t* out, std::uint32_t size = 0) : out_(out), size_(size) {}

  template <class T>
  void Number(FieldName, T value) {
    using U = std::make_unsigned_t<T>;
    StoreLittle<U>(out_, static_cast<U>(value));
    out_ += sizeof(T);
  }
  void Constant(FieldName name, std::uint32_t value) { Number(name, value); }
  // One that the record has a member for, which counts.
  void Constant(FieldName name, std::uint32_t, std::uint32_t member) { Number(name, member); }
  void OwnSize(FieldName name) { Number(name, size_); }
  // A field of `width` characters: cut, and zero behind the text. A text that fills the field has no terminator.
  void Text(FieldName, const char* text, std::size_t width) {
    const std::size_t length = ::strnlen(text, width);
    std::memcpy(out_, text, length);
    std::memset(out_ + length, 0, width - length);
    out_ += width;
  }
  void Text(FieldName, const char16_t* text, std::size_t width) {
    std::size_t length = 0;
    while (length < width && text[length] != 0) ++length;
    for (std::size_t i = 0; i < width; ++i) Put(i < length ? text[i] : std::uint16_t{0});
  }
  // A field of `count` characters as they stand, whatever lies behind a terminator among them.
  void Units(FieldName, const char16_t* text, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) Put(text[i]);
  }
  void Bytes(FieldName, const std::uint8_t* bytes, std::size_t size) {
    std::memcpy(out_, bytes, size);
    out_ += size;
  }
  void Reserved(std::size_t size) {
    std::memset(out_, 0, size);
    out_ += size;
  }

 protected:
  void Put(std::uint16_t unit) {
    StoreLittle(out_, unit);
    out_ += sizeof unit;
  }

  std::uint8_t* out_;

 private:
  std::uint32_t size_;
};

class RecordDecoder {
 public:
  explicit RecordDecoder(const std::uint8_t* in) : in_(in) {}

  template <class T>
  void Number(FieldName, T& value) {
    value = static_cast<T>(LoadLittle<std::make_unsigned_t<T>>(in_));
    in_ += sizeof(T);
  }
  void Constant(FieldName, std::uint32_t value) { Reserved(sizeof value); }
  void Constant(FieldName name, std::uint32_t, std::uint32_t& member) { Number(name, member); }
  void OwnSize(FieldName) { Reserved(sizeof(std::uint32_t)); }
  // Cut to the target's room and terminated, whatever the field holds. Fields without room for a terminator in the
  // target lose their last character.
  template <std::size_t N>
  void Text(FieldName, char (&text)[N], std::size_t width) {
    const std::size_t length = ::strnlen(reinterpret_cast<const char*>(in_), width);
    CopyText(text, N, std::string_view(reinterpret_cast<const char*>(in_), length));
    in_ += width;
  }
  template <std::size_t N>
  void Text(FieldName, char16_t (&text)[N], std::size_t width) {
    std::size_t length = 0;
    for (; length < width && length < N - 1; ++length) {
      text[length] = static_cast<char16_t>(LoadLittle<std::uint16_t>(in_ + 2 * length));
      if (text[length] == 0) break;
    }
    std::fill(text + length, text + N, u'\0');
    in_ += 2 * width;
  }
  // The counterpart of RecordEncoder::Units; the target's last character is made its terminator.
  template <std::size_t N>
  void Units(FieldName, char16_t (&text)[N], std::size_t count) {
    for (std::size_t i = 0; i < N; ++i)
      text[i] = i < count ? static_cast<char16_t>(LoadLittle<std::uint16_t>(in_ + 2 * i)) : u'\0';
    text[N - 1] = 0;
    in_ += 2 * count;
  }
  void Bytes(FieldName, std::uint8_t* bytes, std::size_t size) {
    std::memcpy(bytes, in_, size);
    in_ += size;
  }
  void Reserved(std::size_t size) { in_ += size; }

 protected:
  const std::uint8_t* in_;
};

// The same for the big-endian numbers of ICC records, which hold no text.
class BigRecordEncoder : public RecordEncoder {
 public:
  using RecordEncoder::RecordEncoder;
  void Text(FieldName, const void*, std::size_t) = delete;

  template <class T>
  void Number(FieldName, T value) {
    using U = std::make_unsigned_t<T>;
    StoreBig<U>(out_, static_cast<U>(value));
    out_ += sizeof(T);
  }
};

class BigRecordDecoder : public RecordDecoder {
 public:
  using RecordDecoder::RecordDecoder;
  void Text(FieldName, void*, std::size_t) = delete;

  template <class T>
  void Number(FieldName, T& value) {
    value = static_cast<T>(LoadBig<std::make_unsigned_t<T>>(in_));
    in_ += sizeof(T);
  }
};

template <class Record>
using RecordBytes = std::array<std::uint8_t, kRecordSize<Record>>;

template <class Record>
void EncodeRecord(const Record& record, std::uint8_t* out) {
  constexpr std::uint32_t kSize = kRecordSize<Record>;
  RecordEncoder encoder(out, kSize);
  Record::Describe(record, encoder);
}

// `in` holds kRecordSize<Record> bytes.
template <class Record>
Record DecodeRecord(const std::uint8_t* in) {
  Record record{};
  RecordDecoder decoder(in);
  Record::Describe(record, decoder);
  return record;
}

template <class Record>
bool WriteRecord(CNvxFile& file, const Record& record) {
  RecordBytes<Record> bytes;
  EncodeRecord(record, bytes.data());
  return file.Write(bytes.data(), kRecordSize<Record>) == kRecordSize<Record>;
}

// False, with the record as it was, if the stream ends early.
template <class Record>
bool ReadRecord(CNvxFile& file, Record& record) {
  RecordBytes<Record> bytes;
  if (file.Read(bytes.data(), kRecordSize<Record>) != kRecordSize<Record>) return false;
  record = DecodeRecord<Record>(bytes.data());
  return true;
}

}  // namespace nvx
