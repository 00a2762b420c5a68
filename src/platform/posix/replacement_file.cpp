#include "platform/replacement_file.h"

#include "platform/locale.h"

#include <nvxprofile/file.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

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

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string TemporaryFolder() {
  const char* const folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != 0 ? folder : "/tmp";
}

std::string DescriptorPath(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

// A file without a name, to which one can be given later: that takes /proc. -1 if there cannot be one.
int OpenNameless(const std::string& folder) {
  const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
  if (descriptor < 0 || ::access(DescriptorPath(descriptor).c_str(), F_OK) == 0) return descriptor;
  ::close(descriptor);
  errno = ENOENT;
  return -1;
}

struct NamedFile {
  int descriptor;  // -1 if it could not be made
  std::string path;
};

// A new file whose name starts with `start` and that nobody else has.
NamedFile OpenNamed(const std::string& start, ::mode_t mode) {
  constexpr int kTries = 1000;
  for (int i = 0; i < kTries; ++i) {
    std::string path = start + "-" + std::to_string(::getpid()) + "-" + std::to_string(i);
    const int descriptor = ::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode);
    if (descriptor >= 0) return {descriptor, std::move(path)};
    if (errno != EEXIST) break;
  }
  return {-1, {}};
}

// The system lets nobody put or rename a file there, which says nothing about the target itself.
bool IsFolderRefusal(int error) { return error == EACCES || error == EPERM || error == EROFS || error == EBUSY; }

// Makes a rename durable. Its failure harms nobody: the file is complete under either name.
void SyncFolder(const std::string& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

// Makes the whole of one file the content of another.
bool CopyContent(int from, int to) {
  if (::lseek(from, 0, SEEK_SET) != 0 || ::lseek(to, 0, SEEK_SET) != 0) return false;
  std::array<char, 65536> piece;
  std::int64_t size = 0;
  while (true) {
    const ::ssize_t got = ::read(from, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    if (WriteFile(to, piece.data(), static_cast<std::size_t>(got)) != static_cast<std::size_t>(got)) return false;
    size += got;
  }
  return ::ftruncate(to, size) == 0 && ::fsync(to) == 0;
}

// Meets a full disk before the first byte of the old content is gone. File systems that cannot reserve room say so, and
// are written without.
bool ReserveRoom(int descriptor, std::int64_t size) {
  if (size == 0 || ::fallocate(descriptor, 0, 0, size) == 0) return true;
  return errno == EOPNOTSUPP || errno == ENOSYS;
}

// Where the old content of a file waits while the file is written: a named file of the temporary folder.
class OldContent {
 public:
  explicit OldContent(const std::string& target)
      : file_(OpenNamed(TemporaryFolder() + "/" + NameOf(target).substr(0, 200) + ".nvx-old", 0600)) {}
  OldContent(const OldContent&) = delete;
  OldContent& operator=(const OldContent&) = delete;
  ~OldContent() {
    if (file_.descriptor < 0) return;
    ::close(file_.descriptor);
    if (!needed_) ::unlink(file_.path.c_str());
  }

  bool TakeFrom(int target) {
    needed_ = file_.descriptor >= 0 && CopyContent(target, file_.descriptor);
    return needed_;
  }
  // The file stays where it is if the target does not take its content.
  void PutBack(int target) { needed_ = !CopyContent(file_.descriptor, target); }
  void Forget() { needed_ = false; }

 private:
  NamedFile file_;
  bool needed_ = false;
};

// Writes `from` into the target where it stands. The old content goes back after a failure, and stays in the temporary
// folder when not even that works or the process is killed.
bool Overwrite(int from, const std::string& target) {
  const int to = ::open(target.c_str(), O_RDWR | O_CLOEXEC);
  if (to < 0) return false;
  OldContent old(target);
  bool done = false;
  if (old.TakeFrom(to)) {
    done = ReserveRoom(to, FileSize(from)) && CopyContent(from, to);
    done ? old.Forget() : old.PutBack(to);
  }
  ::close(to);
  return done;
}

}  // namespace

class ReplacementFile::State {
 public:
  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  FileHandle Create(std::u16string_view target);
  bool Commit(FileHandle file);

 private:
  FileHandle CreateBeside();
  FileHandle CreateElsewhere();
  bool GiveName(FileHandle file);
  bool Rename(FileHandle file);

  std::string target_;      // empty when there is nothing to replace
  std::string temporary_;   // name of the new file
  bool named_ = false;      // the new file has that name already
  bool elsewhere_ = false;  // the new file lies in the temporary folder
};

ReplacementFile::State::~State() {
  if (named_) ::unlink(temporary_.c_str());
}

FileHandle ReplacementFile::State::Create(std::u16string_view target) {
  const std::string path = ResolveLink(WideToPath(target));
  struct ::stat status {};
  const bool exists = ::stat(path.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode))
    return OpenFile(target, kGenericRead | kGenericWrite, kNoShare, kCreateAlways);
  // A file that may not be written is not replaced either, though its folder would allow it.
  if (exists && ::access(path.c_str(), W_OK) != 0) return kNoFile;

  target_ = path;
  FileHandle file = CreateBeside();
  if (file == kNoFile && exists && IsFolderRefusal(errno)) file = CreateElsewhere();
  if (file == kNoFile) return kNoFile;
  if (exists && !elsewhere_) {
    // As far as this process may: a file of somebody else's becomes its own otherwise.
    if (::fchown(Descriptor(file), status.st_uid, status.st_gid) != 0) errno = 0;
    ::fchmod(Descriptor(file), status.st_mode & 07777);
  }
  return file;
}

FileHandle ReplacementFile::State::CreateBeside() {
  const std::string folder = FolderOf(target_);
  temporary_ = folder + "/." + NameOf(target_).substr(0, 200) + ".nvx-new";
  const int descriptor = OpenNameless(folder);
  if (descriptor >= 0) return descriptor;
  NamedFile file = OpenNamed(temporary_, 0666);
  named_ = file.descriptor >= 0;
  temporary_ = std::move(file.path);
  return file.descriptor;
}

FileHandle ReplacementFile::State::CreateElsewhere() {
  NamedFile file = OpenNamed(TemporaryFolder() + "/." + NameOf(target_).substr(0, 200) + ".nvx-new", 0600);
  // Nobody needs its name, and without one nothing is left behind.
  if (file.descriptor >= 0) ::unlink(file.path.c_str());
  elsewhere_ = file.descriptor >= 0;
  return file.descriptor;
}

bool ReplacementFile::State::GiveName(FileHandle file) {
  if (named_) return true;
  ::unlink(temporary_.c_str());
  const std::string handle = DescriptorPath(Descriptor(file));
  named_ = ::linkat(AT_FDCWD, handle.c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) == 0;
  return named_;
}

bool ReplacementFile::State::Rename(FileHandle file) {
  // Two savers of one target use the same name and may take it from each other; whichever file is renamed is whole.
  constexpr int kTries = 100;
  for (int i = 0; i < kTries; ++i) {
    if (!GiveName(file)) {
      if (errno == EEXIST) continue;
      return false;
    }
    if (::rename(temporary_.c_str(), target_.c_str()) == 0) {
      named_ = false;
      return true;
    }
    if (errno != ENOENT) return false;
    named_ = false;
  }
  return false;
}

bool ReplacementFile::State::Commit(FileHandle file) {
  if (target_.empty()) return true;
  if (::fsync(Descriptor(file)) != 0) return false;
  if (elsewhere_) return Overwrite(Descriptor(file), target_);
  if (Rename(file)) {
    SyncFolder(FolderOf(target_));
    return true;
  }
  return IsFolderRefusal(errno) && Overwrite(Descriptor(file), target_);
}

ReplacementFile::ReplacementFile() : state_(std::make_unique<State>()) {}
ReplacementFile::~ReplacementFile() = default;
FileHandle ReplacementFile::Create(std::u16string_view target) { return state_->Create(target); }
bool ReplacementFile::Commit(FileHandle file) { return state_->Commit(file); }

}  // namespace nvx::platform
