#include "files.h"

#include "interruption.h"

#include <nvxprofile/file.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/text_conversion.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace nvx::tool {
namespace {

namespace fs = std::filesystem;

// The sizes that profiles store have 32 bits.
constexpr std::int64_t kLongestFile = std::numeric_limits<std::uint32_t>::max();
constexpr const char* kTooLong = "is longer than any profile";

// What the first write to standard output that failed failed with.
int outputError = 0;

std::string Reason(int error) { return std::system_category().message(error); }

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
  if (path == kStandardStream || path == "/dev/stdout") return STDOUT_FILENO;
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

// 0, or the number of the error.
int WriteAll(int descriptor, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ::ssize_t put = ::write(descriptor, bytes.data(), bytes.size());
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return put < 0 ? errno : EIO;
    bytes = bytes.subspan(static_cast<std::size_t>(put));
  }
  return 0;
}

std::u16string PathOf(std::FILE* file) { return Utf8ToWide("/proc/self/fd/" + std::to_string(::fileno(file))); }

int WriteInto(const std::string& path, std::span<const std::uint8_t> bytes) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) return errno;
  const int error = WriteAll(descriptor, bytes);
  return ::close(descriptor) != 0 && error == 0 ? errno : error;
}

// Why nothing may be put in the place of what stands at the path; empty if something may.
std::string WhyNotReplaced(const std::string& path) {
  struct ::stat status {};
  if (::stat(path.c_str(), &status) == 0) return KindOf(status.st_mode);
  if (errno != ENOENT) return Reason(errno);
  const bool isLink = ::lstat(path.c_str(), &status) == 0;
  return isLink ? "is a link to what is not there" : std::string();
}

}  // namespace

std::string WhyNotReadable(const std::string& path) {
  struct ::stat status {};
  if (::stat(path.c_str(), &status) != 0) return Reason(errno);
  if (S_ISFIFO(status.st_mode)) return "is a pipe; \"-\" reads from standard input";
  if (std::string kind = KindOf(status.st_mode); !kind.empty()) return kind;
  if (status.st_size > kLongestFile) return kTooLong;
  return ::access(path.c_str(), R_OK) == 0 ? std::string() : Reason(errno);
}

std::string WhyNotOpened(const std::string& path) {
  if (std::string failure = WhyNotReadable(path); !failure.empty()) return failure;
  const std::size_t length = Utf8ToWide(path).size();
  if (length < CNvxFile::kPathLength) return "cannot be opened";
  return fmt::format("the path has {} characters, and at most {} are possible", length, CNvxFile::kPathLength - 1);
}

InputFile::InputFile(const std::string& path) {
  if (path == kStandardStream) {
    KeepStandardInput();
  } else {
    failure_ = WhyNotReadable(path);
    path_ = Utf8ToWide(path);
  }
}

void InputFile::KeepStandardInput() {
  kept_.reset(std::tmpfile());
  if (!kept_) {
    failure_ = "no temporary file: " + Reason(errno);
    return;
  }
  const int descriptor = ::fileno(kept_.get());
  std::array<std::uint8_t, 65536> block;
  std::int64_t length = 0;
  while (true) {
    const ::ssize_t got = ::read(STDIN_FILENO, block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) failure_ = Reason(errno);
    if (got <= 0) break;
    length += got;
    const int error = WriteAll(descriptor, std::span(block).first(static_cast<std::size_t>(got)));
    if (error != 0) failure_ = "no room for it in the temporary folder: " + Reason(error);
    if (length > kLongestFile) failure_ = kTooLong;
    if (!failure_.empty()) break;
  }
  path_ = PathOf(kept_.get());
}

HeldBytes::HeldBytes(std::span<const std::uint8_t> bytes) : file_(std::tmpfile()) {
  const int error = file_ ? WriteAll(::fileno(file_.get()), bytes) : errno;
  if (error != 0) throw std::runtime_error("no temporary file: " + Reason(error));
  path_ = PathOf(file_.get());
}

std::string WhyNotWritten(const std::string& path, int error) {
  std::error_code code;
  if (fs::is_directory(path, code)) return "is a folder";
  const fs::path parent = fs::path(path).parent_path();
  const std::string folder = parent.empty() ? "." : parent.string();
  if (!fs::is_directory(folder, code)) return fmt::format("there is no folder {}", folder);
  if (fs::exists(path, code) && ::access(path.c_str(), W_OK) != 0) return Reason(errno);
  if (::access(folder.c_str(), W_OK) != 0) return fmt::format("{} in the folder {}", Reason(errno), folder);
  if (error != 0) return Reason(error);
  const bool isLong = Utf8ToWide(path).size() >= CNvxFile::kPathLength;
  return isLong ? "cannot be written under a path as long as this" : "cannot be written";
}

void WriteFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  if (bytes.empty() || static_cast<std::int64_t>(bytes.size()) > kLongestFile) {
    throw std::runtime_error(fmt::format("{}: {} bytes make no file", path, bytes.size()));
  }
  if (const std::string why = WhyNotReplaced(path); !why.empty()) throw std::runtime_error(path + ": " + why);
  CICMEntry carrier;
  std::memcpy(carrier.GetBuffer(static_cast<std::uint32_t>(bytes.size())), bytes.data(), bytes.size());
  const SaveUnderWay save;
  std::uint32_t unused = 0;
  errno = 0;
  if (!carrier.Save(Utf8ToWide(path).c_str(), unused)) {
    const int error = errno;
    throw std::runtime_error(path + ": " + WhyNotWritten(path, error));
  }
}

void WriteOutput(const std::string& path, std::span<const std::uint8_t> bytes) {
  const std::optional<int> descriptor = DescriptorOf(path);
  if (descriptor == STDOUT_FILENO) {
    WriteStandardOutput({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    FinishStandardOutput();
    return;
  }
  struct ::stat status {};
  const bool isStream = ::stat(path.c_str(), &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode));
  if (!descriptor && !isStream) {
    WriteFile(path, bytes);
    return;
  }
  const int error = descriptor ? WriteAll(*descriptor, bytes) : WriteInto(path, bytes);
  if (error != 0) throw std::runtime_error(path + ": " + Reason(error));
}

std::string ReadInput(const std::string& path) {
  const InputFile input(path);
  if (!input.Failure().empty()) throw std::runtime_error(path + ": " + input.Failure());
  CNvxFile file;
  if (!file.Open(input.Path().c_str(), kGenericRead, kShareRead, kOpenExisting)) {
    throw std::runtime_error(path + ": " + WhyNotOpened(path));
  }
  std::string text(file.GetLength(), '\0');
  text.resize(file.Read(text.data(), static_cast<std::uint32_t>(text.size())));
  return text;
}

void WriteStandardOutput(std::string_view text) {
  // An empty text may have no address, which fwrite takes amiss.
  if (text.empty()) return;
  errno = 0;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() && outputError == 0) outputError = errno;
}

void FinishStandardOutput() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
  const int error = outputError != 0 ? outputError : errno;
  // Told once is enough.
  std::clearerr(stdout);
  throw std::runtime_error("standard output: " + (error != 0 ? Reason(error) : "cannot be written"));
}

}  // namespace nvx::tool
