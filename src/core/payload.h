// The one pattern by which entries turn their buffer into a payload and back.
#pragma once

#include "core/block.h"
#include "core/stream.h"

#include <nvxprofile/file.h>
#include <nvxprofile/profile_entry.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <utility>

namespace nvx {

// A stream over an entry's buffer, which stays the entry's.
class EntryStream : public SharedStream {
 public:
  explicit EntryStream(CProfileDataEntry& entry);
};

// A stream that compares what is written with what stands there, and takes nothing else.
class ComparingStream : public CNvxMemFile {
 public:
  explicit ComparingStream(std::span<const std::uint8_t> bytes)
      : CNvxMemFile(const_cast<std::uint8_t*>(bytes.data()), static_cast<std::uint32_t>(bytes.size())) {}

  std::uint32_t Write(const void* bytes, std::uint32_t count) override {
    const bool same = count <= Length - Position && std::memcmp(Buffer + Position, bytes, count) == 0;
    if (same) Position += count;
    return same ? count : 0;
  }
};

// How long a rebuilt buffer is: as long as its form, or as long as the block of a memory stream that the form was
// written to, the smallest multiple of 1024 that holds it, with zeros behind the form.
enum class BufferLength { kExact, kCapacity };

// The one place that knows what parsing and rebuilding do to the state of a payload.
class PayloadKeeper {
 public:
  // Runs load(stream) over the buffer; false for an empty one. A reader that passes over something (nvx::PassOver) has
  // read the buffer in part, although it gives true.
  template <class Load>
  static bool Parse(CProfileDataEntry& entry, Load&& load) {
    if (entry.buffer_.IsEmpty()) return false;
    EntryStream stream(entry);
    entry.state_ = PayloadState::kPart;
    if (!load(stream)) return false;
    if (!stream.HasPassedOver()) SetInStep(entry);
    return true;
  }

  // True unless the buffer holds bytes that the payload does not say.
  static bool SaysAll(const CProfileDataEntry& entry) {
    return entry.state_ == PayloadState::kWhole || entry.state_ == PayloadState::kEdited || entry.buffer_.IsEmpty();
  }

  // True for a payload that has to be parsed before it answers for the buffer.
  static bool IsStale(const CProfileDataEntry& entry) {
    return entry.isOpen_ || (entry.state_ == PayloadState::kUnread && !entry.buffer_.IsEmpty());
  }

  // Runs save(stream) into a new block and gives that to the entry. On false the entry's buffer stays as it was, and so
  // it does if it says the same already: most renewals change nothing, and memory costs more than looking. The writer
  // itself tells how long the block has to be.
  template <class Save>
  static bool Replace(CProfileDataEntry& entry, BufferLength length, Save&& save) {
    if (Says(entry.Bytes(), length, save)) return true;
    const std::optional<std::uint64_t> size = SizeOf(save);
    const std::uint64_t capacity = size ? CapacityFor(*size, length) : std::numeric_limits<std::uint64_t>::max();
    if (capacity > std::numeric_limits<std::uint32_t>::max()) return false;
    Block block = AllocateBlock(static_cast<std::size_t>(capacity));
    std::memset(block.get() + *size, 0, static_cast<std::size_t>(capacity - *size));
    CNvxMemFile stream(block.get(), static_cast<std::uint32_t>(capacity));
    if (!save(stream) || stream.GetPosition() != *size) return false;
    entry.AttachBuffer(block.release(), static_cast<std::uint32_t>(capacity));
    return true;
  }

  // True if the buffer is what Replace would make.
  template <class Save>
  static bool Says(std::span<const std::uint8_t> buffer, BufferLength length, Save& save) {
    if (buffer.empty()) return false;
    ComparingStream stream(buffer);
    if (!save(stream) || CapacityFor(stream.Position, length) != buffer.size()) return false;
    const auto rest = buffer.subspan(stream.Position);
    return std::all_of(rest.begin(), rest.end(), [](std::uint8_t byte) { return byte == 0; });
  }

  // Buffer and payload say the same from here on.
  static void SetInStep(CProfileDataEntry& entry) {
    entry.state_ = entry.isOpen_ ? PayloadState::kEdited : PayloadState::kWhole;
  }

  // A stored entry without bytes: it has none, and its payload says nothing.
  static void SetEmpty(CProfileDataEntry& entry) {
    entry.DeleteBuffer();
    SetInStep(entry);
  }

  // A copy takes over what its original knew of buffer and payload, both of which it has copies of.
  static void CopyState(const CProfileDataEntry& from, CProfileDataEntry& to) {
    to.state_ = from.state_;
    to.isOpen_ = from.isOpen_;
  }

  static SharedBytes& BufferOf(CProfileDataEntry& entry) { return entry.buffer_; }

  // The entry's buffer from here on, unread.
  static void Give(CProfileDataEntry& entry, SharedBytes bytes) {
    entry.buffer_ = std::move(bytes);
    entry.state_ = PayloadState::kUnread;
  }

  // The same with the next `size` bytes of a stream; nothing changes for none. False if the stream holds fewer.
  static bool Take(CProfileDataEntry& entry, CNvxFile& file, std::uint32_t size) {
    SharedBytes bytes;
    if (!TakeBytes(file, size, bytes)) return false;
    if (size != 0) Give(entry, std::move(bytes));
    return true;
  }

  // The form of the payload as DataToBuffer makes it, whatever the buffer holds; buffer and state stay. Empty if the
  // form cannot carry the payload.
  static SharedBytes FormOf(CProfileDataEntry& entry);

 private:
  static std::uint64_t CapacityFor(std::uint64_t size, BufferLength length) {
    constexpr std::uint64_t kStep = 1024;
    if (length == BufferLength::kExact) return size;
    return size == 0 ? kStep : (size + kStep - 1) / kStep * kStep;
  }
};

// Parses the buffer of an entry, and has what is wrong with it recorded.
inline bool ParseInto(Diagnosis* diagnosis, CProfileDataEntry& entry) {
  struct Attached {
    Attached(CProfileDataEntry& target, Diagnosis* given) : entry(target) { entry.SetDiagnosis(given); }
    ~Attached() { entry.SetDiagnosis(nullptr); }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;
    CProfileDataEntry& entry;
  } const attached(entry, diagnosis);
  return entry.BufferToData();
}

inline EntryStream::EntryStream(CProfileDataEntry& entry)
    : SharedStream(PayloadKeeper::BufferOf(entry), SharedStream::Taking::kViews) {
  SetDiagnosis(entry.GetDiagnosis());
}

template <class Load>
bool ParseBuffer(CProfileDataEntry& entry, Load&& load) {
  return PayloadKeeper::Parse(entry, load);
}

// The buffer anew from the payload, unless it holds bytes that the payload does not say.
template <class Save>
bool RebuildBuffer(CProfileDataEntry& entry, BufferLength length, Save&& save) {
  if (!PayloadKeeper::SaysAll(entry) || !PayloadKeeper::Replace(entry, length, save)) return false;
  PayloadKeeper::SetInStep(entry);
  return true;
}

}  // namespace nvx
