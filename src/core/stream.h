// What readers and writers of forms need of a stream beside its published operations.
#pragma once

#include "core/byte_order.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/file.h>
#include <nvxprofile/shared_bytes.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

namespace nvx {

// Bytes from the position to the end.
inline std::uint32_t Remaining(CNvxFile& file) {
  const std::uint32_t length = file.GetLength();
  const std::uint32_t position = file.GetPosition();
  return position < length ? length - position : 0;
}

// True if the stream still holds `count` records of `size` bytes. Every stored count passes here, or through an equal
// test, before it sizes anything.
inline bool Holds(CNvxFile& file, std::uint64_t count, std::uint64_t size) {
  return size == 0 || count <= Remaining(file) / size;
}

// Puts the stream at an offset from its start; false beyond the end.
bool SeekTo(CNvxFile& file, std::uint64_t offset);

inline bool ReadExact(CNvxFile& file, void* buffer, std::uint32_t count) { return file.Read(buffer, count) == count; }

inline bool WriteExact(CNvxFile& file, const void* buffer, std::uint32_t count) {
  return count == 0 || file.Write(buffer, count) == count;
}

inline bool ReadMagic(CNvxFile& file, std::uint32_t magic) {
  std::uint8_t bytes[4];
  return ReadExact(file, bytes, sizeof bytes) && LoadLittle<std::uint32_t>(bytes) == magic;
}

inline bool WriteMagic(CNvxFile& file, std::uint32_t magic) {
  std::uint8_t bytes[4];
  StoreLittle(bytes, magic);
  return WriteExact(file, bytes, sizeof bytes);
}

// The way out of a reader: records the broken rule for whoever attached a diagnosis, at the given offset of the stream
// or where it stands, and gives false.
bool Refuse(CNvxFile& file, std::string_view rule);
bool RefuseAt(CNvxFile& file, std::uint64_t offset, std::string_view rule);

// What is odd but does not stop a reader.
void Warn(CNvxFile& file, std::uint64_t offset, std::string_view rule);

// The same for what a reader leaves out of what it makes of the form.
void PassOver(CNvxFile& file, std::string_view rule);
void PassOverAt(CNvxFile& file, std::uint64_t offset, std::string_view rule);

// A stream that takes everything and keeps nothing but how much that was.
class CountingStream : public CNvxMemFile {
 public:
  std::uint32_t Write(const void*, std::uint32_t count) override {
    size_ += count;
    return count;
  }
  std::uint64_t Size() const { return size_; }

 private:
  std::uint64_t size_ = 0;
};

// Bytes that save(stream) writes; nothing if it gives false.
template <class Save>
std::optional<std::uint64_t> SizeOf(Save&& save) {
  CountingStream stream;
  return save(static_cast<CNvxFile&>(stream)) ? std::optional(stream.Size()) : std::nullopt;
}

// Runs save(stream) unless a form of that many bytes cannot be read back; nothing is written then.
template <class Save>
bool WriteIfItFits(CNvxFile& file, Save&& save) {
  const std::optional<std::uint64_t> size = SizeOf(save);
  return size && *size <= std::numeric_limits<std::uint32_t>::max() && save(file);
}

// The next `count` bytes of a stream: a view of the block of a memory stream, or a copy of a file's bytes. The stream
// moves behind them. Empty with `count` above 0 if the stream holds fewer.
class StreamBlock {
 public:
  StreamBlock(CNvxFile& file, std::uint32_t count);

  bool IsWhole() const { return whole_; }
  const std::uint8_t* Data() const { return data_; }

 private:
  std::unique_ptr<std::uint8_t[]> copy_;
  const std::uint8_t* data_ = nullptr;
  bool whole_ = false;
};

// A stream for reading over bytes that whoever reads may keep without a copy.
class SharedStream : public CNvxMemFile {
 public:
  // What TakeBytes gives: views of bytes that their owner goes on using, or parts of bytes that are used no more.
  enum class Taking { kViews, kParts };

  // Nothing is copied; `bytes` must outlive the stream.
  SharedStream(SharedBytes& bytes, Taking taking)
      : CNvxMemFile(const_cast<std::uint8_t*>(bytes.Data()), bytes.Size()), bytes_(bytes), taking_(taking) {}

 private:
  friend bool TakeBytes(CNvxFile& file, std::uint32_t count, SharedBytes& bytes);

  SharedBytes& bytes_;
  Taking taking_;
};

// Gives the next `count` bytes of a stream, without a copy where it is a SharedStream, and moves behind them. False if
// the stream holds fewer.
bool TakeBytes(CNvxFile& file, std::uint32_t count, SharedBytes& bytes);

}  // namespace nvx
