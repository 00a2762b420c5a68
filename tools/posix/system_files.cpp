#include "system_files.h"

#include <nvxprofile/text_conversion.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace nvx::tool {
namespace {

std::string KindOf(::mode_t mode) {
  if (S_ISDIR(mode)) return "is a folder";
  if (S_ISFIFO(mode)) return "is a pipe";
  if (S_ISCHR(mode) || S_ISBLK(mode)) return "is a device";
  if (S_ISSOCK(mode)) return "is a socket";
  return {};
}

// The descriptor of this process that a path stands for. Opening such a path anew would start over at the beginning of
// what has been written.
std::optional<int> DescriptorOf(std::string_view path) {
  if (path == "/dev/stdout") return STDOUT_FILENO;
  if (path == "/dev/stderr") return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!path.starts_with(folder)) continue;
    int number = -1;
    const char* const end = path.data() + path.size();
    const auto [rest, error] = std::from_chars(path.data() + folder.size(), end, number);
    if (error == std::errc() && rest == end) return number;
  }
  return std::nullopt;
}

int WriteAll(int descriptor, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ::ssize_t put = ::write(descriptor, bytes.data(), bytes.size());
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return put < 0 ? errno : EIO;
    bytes = bytes.subspan(static_cast<std::size_t>(put));
  }
  return 0;
}

int WriteInto(const std::string& path, std::span<const std::uint8_t> bytes) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) return errno;
  const int error = WriteAll(descriptor, bytes);
  return ::close(descriptor) != 0 && error == 0 ? errno : error;
}

}  // namespace

void ClearSystemError() { errno = 0; }
int LastSystemError() { return errno; }
std::string ReasonOf(int error) { return std::system_category().message(error); }

bool IsFolder(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

FolderItems ItemsOf(const std::string& folder) {
  FolderItems found;
  std::error_code error;
  for (std::filesystem::directory_iterator item(folder, error), end; !error && item != end; item.increment(error)) {
    std::error_code ignored;
    const bool isFile = item->is_regular_file(ignored);
    const bool isFolder = item->is_directory(ignored) && !item->is_symlink(ignored);
    found.items.push_back({item->path().filename().string(), isFile, isFolder, isFile ? item->file_size(ignored) : 0});
  }
  if (error) found.failure = error.message();
  std::sort(found.items.begin(), found.items.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return found;
}

std::string MakeFolders(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  return error ? error.message() : std::string();
}

std::string CanonicalName(const std::string& path) {
  std::error_code error;
  const std::filesystem::path name = std::filesystem::weakly_canonical(path, error);
  return error ? path : name.string();
}

std::vector<std::string> FilesNamedBy(const std::string& argument) { return {argument}; }

bool IsDeviceName(const std::string&) { return false; }
std::string WhyNoFileName(const std::string&) { return {}; }

std::string WhyNotReadable(const std::string& path) {
  struct ::stat status {};
  if (::stat(path.c_str(), &status) != 0) return ReasonOf(errno);
  if (S_ISFIFO(status.st_mode)) return "is a pipe; \"-\" reads from standard input";
  if (std::string kind = KindOf(status.st_mode); !kind.empty()) return kind;
  if (static_cast<std::uint64_t>(status.st_size) > kLongestFile) return kTooLong;
  return ::access(path.c_str(), R_OK) == 0 ? std::string() : ReasonOf(errno);
}

std::string WhyNotWritable(const std::string& path) {
  return ::access(path.c_str(), W_OK) == 0 || errno == ENOENT ? std::string() : ReasonOf(errno);
}

std::string WhyNotReplaced(const std::string& path) {
  struct ::stat status {};
  if (::stat(path.c_str(), &status) == 0) return KindOf(status.st_mode);
  if (errno != ENOENT) return ReasonOf(errno);
  const bool isLink = ::lstat(path.c_str(), &status) == 0;
  return isLink ? "is a link to what is not there" : std::string();
}

bool IsStandardOutput(const std::string& path) { return DescriptorOf(path) == STDOUT_FILENO; }

std::optional<int> WriteIntoStream(const std::string& path, std::span<const std::uint8_t> bytes) {
  if (const std::optional<int> descriptor = DescriptorOf(path)) return WriteAll(*descriptor, bytes);
  struct ::stat status {};
  const bool isStream = ::stat(path.c_str(), &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode));
  if (!isStream) return std::nullopt;
  return WriteInto(path, bytes);
}

// A file without a name.
struct TemporaryFile::State {
  std::FILE* file = std::tmpfile();
  int error = file == nullptr ? errno : 0;
};

TemporaryFile::TemporaryFile() : state_(std::make_unique<State>()) {}

TemporaryFile::~TemporaryFile() {
  if (state_->file != nullptr) std::fclose(state_->file);
}

int TemporaryFile::Append(std::span<const std::uint8_t> bytes) {
  return state_->error != 0 ? state_->error : WriteAll(::fileno(state_->file), bytes);
}

std::u16string TemporaryFile::Path() {
  return state_->file != nullptr ? PathToWide("/proc/self/fd/" + std::to_string(::fileno(state_->file)))
                                 : std::u16string();
}

std::optional<std::string> MakeOwnFolder(const std::string& parent, int& error) {
  std::string path = parent + "/.nvx-XXXXXX";
  if (::mkdtemp(path.data()) != nullptr) return path;
  error = errno;
  return std::nullopt;
}

}  // namespace nvx::tool
