#include "platform/file_system.h"
#include "platform/clock.h"

#include "platform/locale.h"

#include <nvxprofile/file.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace nvx::platform {
namespace {

int Descriptor(FileHandle file) { return static_cast<int>(file); }

}  // namespace

std::string WideToPath(std::u16string_view path) { return WideToBytes(path); }
std::u16string PathToWide(std::string_view path) { return BytesToWide(path); }

FileHandle OpenFile(std::u16string_view path, std::uint32_t access, std::uint32_t, std::uint32_t creation) {
  const bool reads = (access & kGenericRead) != 0;
  const bool writes = (access & kGenericWrite) != 0;
  int flags = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  if (creation == kCreateAlways) flags |= O_CREAT | O_TRUNC;
  const int descriptor = ::open(WideToPath(path).c_str(), flags | O_CLOEXEC, 0666);
  if (descriptor < 0) return kNoFile;
  struct ::stat status {};
  if (::fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
    ::close(descriptor);
    errno = EISDIR;
    return kNoFile;
  }
  return descriptor;
}

void CloseFile(FileHandle file) { ::close(Descriptor(file)); }

std::size_t ReadFile(FileHandle file, void* buffer, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ::ssize_t got = ::read(Descriptor(file), static_cast<char*>(buffer) + done, count - done);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

std::size_t WriteFile(FileHandle file, const void* buffer, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ::ssize_t put = ::write(Descriptor(file), static_cast<const char*>(buffer) + done, count - done);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) break;
    done += static_cast<std::size_t>(put);
  }
  return done;
}

std::int64_t SeekFile(FileHandle file, std::int64_t offset, Origin origin) {
  const int whence = origin == Origin::kBegin ? SEEK_SET : origin == Origin::kPosition ? SEEK_CUR : SEEK_END;
  return ::lseek(Descriptor(file), offset, whence);
}

std::int64_t FileSize(FileHandle file) {
  struct ::stat status {};
  return ::fstat(Descriptor(file), &status) == 0 ? std::int64_t{status.st_size} : -1;
}

bool FileExists(std::u16string_view path) {
  struct ::stat status {};
  return ::stat(WideToPath(path).c_str(), &status) == 0;
}

std::optional<SYSTEMTIME> FileCreationTime(std::u16string_view path) {
  struct ::statx status {};
  const std::string name = WideToPath(path);
  if (::statx(AT_FDCWD, name.c_str(), 0, STATX_BTIME | STATX_MTIME, &status) != 0) return std::nullopt;
  const auto& stamp = (status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime;
  const std::time_t seconds = stamp.tv_sec;
  std::tm parts{};
  if (::gmtime_r(&seconds, &parts) == nullptr) return std::nullopt;
  SYSTEMTIME time = SystemTimeOf(parts);
  time.wDayOfWeek = static_cast<std::uint16_t>(parts.tm_wday);
  time.wMilliseconds = static_cast<std::uint16_t>(stamp.tv_nsec / 1'000'000);
  return time;
}

std::uint32_t LastError() { return static_cast<std::uint32_t>(errno); }

}  // namespace nvx::platform
