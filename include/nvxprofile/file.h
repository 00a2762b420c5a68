// Byte streams. A reader or writer of a form takes a CNvxFile and so serves a file on disk and a block of memory alike.
#pragma once

#include <nvxprofile/export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace nvx {

class Diagnosis;

// The flags that CNvxFile::Open takes.
inline constexpr std::uint32_t kGenericRead = 0x80000000u;
inline constexpr std::uint32_t kGenericWrite = 0x40000000u;
inline constexpr std::uint32_t kNoShare = 0;
inline constexpr std::uint32_t kShareRead = 1;
inline constexpr std::uint32_t kCreateAlways = 2;
inline constexpr std::uint32_t kOpenExisting = 3;

// The origins that CNvxFile::Seek takes.
inline constexpr std::uint32_t kFromBegin = 0;
inline constexpr std::uint32_t kFromPosition = 1;
inline constexpr std::uint32_t kFromEnd = 2;

}  // namespace nvx

// A stream over a file. Reads and writes go through a buffer inside the object. What Write accepted is on its way to
// the file only after Flush, Close or the destructor; Flush alone tells whether it got there. A write that comes up
// short fails the stream until it is opened anew: it accepts nothing more, and Flush gives false, so that what was
// written in part is never taken for whole. No operation reports through anything but its result, and none throws but
// for want of memory.
class NVX_EXPORT CNvxFile {
 public:
  // Characters of the field that keeps a path, the terminator included. Longer paths are opened all the same and kept
  // beside it.
  static constexpr std::uint32_t kPathLength = 256;

  CNvxFile();
  CNvxFile(const CNvxFile&) = delete;
  CNvxFile& operator=(const CNvxFile&) = delete;
  virtual ~CNvxFile();

  // Opens the file at a UTF-16 path with the flags above. On false the handle and the stored path stay as they were.
  // Sharing modes have no counterpart on a POSIX system and are not enforced there; folders cannot be opened.
  virtual bool Open(const char16_t* path, std::uint32_t access, std::uint32_t share, std::uint32_t creation);

  // Writes what is still in the buffer, closes the handle if there is one and empties the path.
  virtual void Close();

  // Bytes actually read; 0 if the stream is closed.
  virtual std::uint32_t Read(void* buffer, std::uint32_t count);

  // Bytes accepted; 0 if the stream is closed, failed or opened for reading alone, with the position as it was; fewer
  // than `count` if the file refuses them.
  virtual std::uint32_t Write(const void* buffer, std::uint32_t count);

  // Size of the file in bytes, lower 32 bits; 0 if the stream is closed or the query fails.
  virtual std::uint32_t GetLength();

  // The position, lower 32 bits; 0 if the stream is closed. The seeks give the new one.
  virtual std::uint32_t GetPosition();
  virtual std::uint32_t SeekToEnd();
  virtual std::uint32_t SeekToBegin();

  // `offset` is a signed 32-bit distance, `origin` 0 from the start, 1 from the position, 2 from the end (forwards).
  // Returns the new position; 0 if the stream is closed. A target before the start leaves the position.
  virtual std::uint32_t Seek(std::uint32_t offset, std::uint32_t origin);

  // Hands buffered bytes to the file. False if any byte offered since Open could not be written.
  bool Flush();

  // The stored path, whatever its length; empty while the stream is closed. Valid until the next Open or Close.
  std::u16string_view GetPath() const;

  // Copies name and extension of the stored path, without folders: the text and its terminator, at most 256 characters,
  // and nothing behind them.
  void GetFileName(char16_t* out) const;

  // Copies the stored path in the same way; nothing of a path of 256 characters or more, since its start is the path of
  // something else.
  void GetPathName(char16_t* out) const;

  // The handle of the operating system; all bits set while the stream is closed.
  void* GetHandle() const;

  // False for a file of 4 GiB or more, of whose size GetLength gives the lower 32 bits. Loads of whole files refuse it.
  bool FitsLength();

  // Who wants to know why a load fails attaches a record here, or null. Not owned; must outlive its use.
  void SetDiagnosis(nvx::Diagnosis* diagnosis) { diagnosis_ = diagnosis; }
  nvx::Diagnosis* GetDiagnosis() const { return diagnosis_; }

  // Readers note here that they passed over something of the form that the stream holds, so that what they made of it
  // does not say all of it, although they give true.
  void NotePassedOver() { passedOver_ = true; }
  bool HasPassedOver() const { return passedOver_; }

 protected:
  // Closes the stream and takes over an open handle, for streams that write beside their target; the path is the one
  // that GetFileName and GetPathName give.
  void Attach(std::intptr_t handle, std::u16string_view path);

 private:
  struct Buffer;

  Buffer& UseBuffer();
  bool FlushWrites();
  void DropReads();

  char16_t path_[kPathLength] = {};  // empty for a path that does not fit
  std::intptr_t handle_ = -1;
  std::int64_t position_ = 0;       // as the caller sees it; the handle runs ahead of reads and behind writes
  std::unique_ptr<Buffer> buffer_;  // made at the first small transfer
  bool writable_ = false;
  bool failed_ = false;  // a write came up short
  bool passedOver_ = false;
  nvx::Diagnosis* diagnosis_ = nullptr;
  std::u16string longPath_;  // a path that does not fit into path_
};

// A stream over a block of memory. Its three fields are its interface:
// - to read or write a block that somebody else owns, set Buffer and Length and a Position of 0;
// - to write a growing block, construct and write; Buffer is then the block, Position the bytes written. Whoever takes
//   the block sets Buffer and Length to 0 and releases it with free.
// The stream never frees its block; its destructor only sets Buffer and Length to 0.
//
// A write beyond Length resizes the block (malloc and realloc): from nothing to 1024 bytes, then by 1024, or by the
// size of the write where that is greater than 1024. New bytes are zero, and Length is this capacity and not what was
// written. A failed resize makes Write give 0 and leaves all fields as they were.
//
// Seek with origin 2 counts backwards from the end, unlike the file stream. A position never leaves the block.
class NVX_EXPORT CNvxMemFile : public CNvxFile {
 public:
  CNvxMemFile() = default;
  // Borrows a block for reading or for writing inside it.
  CNvxMemFile(void* block, std::uint32_t length) : Buffer(static_cast<std::uint8_t*>(block)), Length(length) {}
  ~CNvxMemFile() override;

  std::uint32_t Read(void* buffer, std::uint32_t count) override;
  std::uint32_t Write(const void* buffer, std::uint32_t count) override;
  std::uint32_t GetLength() override;
  std::uint32_t GetPosition() override;
  std::uint32_t SeekToEnd() override;
  std::uint32_t SeekToBegin() override;
  std::uint32_t Seek(std::uint32_t offset, std::uint32_t origin) override;

  std::uint8_t* Buffer = nullptr;
  std::uint32_t Length = 0;
  std::uint32_t Position = 0;
};
