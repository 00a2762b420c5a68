#include "platform/file_system.h"

#include "platform/locale.h"

#include <nvxprofile/file.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>

namespace nvx::platform {
namespace {

int Descriptor(FileHandle file) { return static_cast<int>(file); }

// The link's target where the path is a link that leads somewhere, else the path itself.
std::string ResolveLink(const std::string& path) {
  struct ::stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  char* const resolved = ::realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return path;
  std::string result(resolved);
  std::free(resolved);
  return result;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Makes a rename durable. Its failure harms nobody: the file is complete under either name.
void SyncFolder(const std::string& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

FileNameParts SplitFileName(std::u16string_view path) {
  const std::size_t slash = path.find_last_of(u"/\\");
  const std::u16string_view file = slash == path.npos ? path : path.substr(slash + 1);
  const std::size_t point = file.rfind(u'.');
  if (point == file.npos) return {file, {}};
  return {file.substr(0, point), file.substr(point)};
}

FileHandle OpenFile(std::u16string_view path, std::uint32_t access, std::uint32_t creation) {
  const bool reads = (access & kGenericRead) != 0;
  const bool writes = (access & kGenericWrite) != 0;
  int flags = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  if (creation == kCreateAlways) flags |= O_CREAT | O_TRUNC;
  const int descriptor = ::open(WideToUtf8(path).c_str(), flags | O_CLOEXEC, 0666);
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
  return ::stat(WideToUtf8(path).c_str(), &status) == 0;
}

std::optional<SYSTEMTIME> FileCreationTime(std::u16string_view path) {
  struct ::statx status {};
  const std::string name = WideToUtf8(path);
  if (::statx(AT_FDCWD, name.c_str(), 0, STATX_BTIME | STATX_MTIME, &status) != 0) return std::nullopt;
  const auto& stamp = (status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime;
  const std::time_t seconds = stamp.tv_sec;
  std::tm parts{};
  if (::gmtime_r(&seconds, &parts) == nullptr) return std::nullopt;
  SYSTEMTIME time;
  time.wYear = static_cast<std::uint16_t>(1900 + parts.tm_year);
  time.wMonth = static_cast<std::uint16_t>(parts.tm_mon + 1);
  time.wDayOfWeek = static_cast<std::uint16_t>(parts.tm_wday);
  time.wDay = static_cast<std::uint16_t>(parts.tm_mday);
  time.wHour = static_cast<std::uint16_t>(parts.tm_hour);
  time.wMinute = static_cast<std::uint16_t>(parts.tm_min);
  time.wSecond = static_cast<std::uint16_t>(parts.tm_sec);
  time.wMilliseconds = static_cast<std::uint16_t>(stamp.tv_nsec / 1'000'000);
  return time;
}

std::uint32_t LastError() { return static_cast<std::uint32_t>(errno); }

ReplacementFile::~ReplacementFile() {
  if (named_) ::unlink(temporary_.c_str());
}

FileHandle ReplacementFile::Create(std::u16string_view target) {
  target_ = ResolveLink(WideToUtf8(target));
  struct ::stat status {};
  const bool exists = ::stat(target_.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) return OpenFile(target, kGenericRead | kGenericWrite, kCreateAlways);
  // A file that may not be written is not replaced either, though its folder would allow it.
  if (exists && ::access(target_.c_str(), W_OK) != 0) return kNoFile;

  const std::string folder = FolderOf(target_);
  const std::size_t slash = target_.rfind('/');
  const std::string file = slash == std::string::npos ? target_ : target_.substr(slash + 1);
  temporary_ = folder + "/." + file.substr(0, 200) + ".nvx-new";
  int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    temporary_ += "-" + std::to_string(::getpid()) + "-" + std::to_string(std::random_device()());
    descriptor = ::open(temporary_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    named_ = descriptor >= 0;
  }
  if (descriptor < 0) {
    temporary_.clear();
    return kNoFile;
  }
  if (exists) {
    // As far as this process may: a file of somebody else's becomes its own otherwise.
    if (::fchown(descriptor, status.st_uid, status.st_gid) != 0) errno = 0;
    ::fchmod(descriptor, status.st_mode & 07777);
  }
  return descriptor;
}

bool ReplacementFile::GiveName(FileHandle file) {
  if (named_) return true;
  const std::string handle = "/proc/self/fd/" + std::to_string(Descriptor(file));
  ::unlink(temporary_.c_str());
  named_ = ::linkat(AT_FDCWD, handle.c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) == 0;
  return named_;
}

bool ReplacementFile::Commit(FileHandle file) {
  if (temporary_.empty()) return true;
  if (::fsync(Descriptor(file)) != 0) return false;
  // Two savers of one target use the same name and may take it from each other; whichever file is renamed is whole.
  constexpr int kTries = 100;
  for (int i = 0; i < kTries; ++i) {
    if (!GiveName(file)) {
      if (errno == EEXIST) continue;
      return false;
    }
    if (::rename(temporary_.c_str(), target_.c_str()) == 0) {
      named_ = false;
      SyncFolder(FolderOf(target_));
      return true;
    }
    if (errno != ENOENT) return false;
    named_ = false;
  }
  return false;
}

}  // namespace nvx::platform
