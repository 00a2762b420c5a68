// Files by UTF-16 path. This folder is the only one that knows the operating system.
#pragma once

#include <nvxprofile/system_time.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nvx::platform {

using FileHandle = std::intptr_t;
inline constexpr FileHandle kNoFile = -1;

// What a path's end splits into; the extension starts with its point and is empty without one.
struct FileNameParts {
  std::u16string_view name;
  std::u16string_view extension;
};
FileNameParts SplitFileName(std::u16string_view path);

// What nvxprofile/file.h has no name for: others may go on writing.
inline constexpr std::uint32_t kShareReadAndWrite = 3;

// Names as the programs of the system write them, and as paths are taken here: of any bytes on a POSIX system, as
// BytesToWide has them, and in UTF-8 on Windows.
std::string WideToPath(std::u16string_view path);
std::u16string PathToWide(std::string_view path);

// Opens with the flags of nvxprofile/file.h; kNoFile on failure and for folders. A POSIX system knows no sharing modes.
FileHandle OpenFile(std::u16string_view path, std::uint32_t access, std::uint32_t share, std::uint32_t creation);
void CloseFile(FileHandle file);

// Closes what it holds.
class ScopedFile {
 public:
  explicit ScopedFile(FileHandle file) : file_(file) {}
  ScopedFile(const ScopedFile&) = delete;
  ScopedFile& operator=(const ScopedFile&) = delete;
  ~ScopedFile() {
    if (IsOpen()) CloseFile(file_);
  }

  bool IsOpen() const { return file_ != kNoFile; }
  FileHandle Handle() const { return file_; }

 private:
  FileHandle file_;
};

// Transfer as many bytes as the file gives or takes, going on after interruptions and short transfers. The count
// that was transferred; fewer than asked at the end of the file or on an error.
std::size_t ReadFile(FileHandle file, void* buffer, std::size_t count);
std::size_t WriteFile(FileHandle file, const void* buffer, std::size_t count);

enum class Origin { kBegin, kPosition, kEnd };
// The new position, or -1 if the target lies before the start or the file cannot seek.
std::int64_t SeekFile(FileHandle file, std::int64_t offset, Origin origin);
// -1 on failure.
std::int64_t FileSize(FileHandle file);

bool FileExists(std::u16string_view path);
// When the file came into being, in UTC; the time of its last change where the file system keeps no other.
std::optional<SYSTEMTIME> FileCreationTime(std::u16string_view path);
// Error number of the last failed call of this thread.
std::uint32_t LastError();

}  // namespace nvx::platform
