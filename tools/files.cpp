#include "files.h"

#include "interruption.h"
#include "paths.h"

#include <nvxprofile/file.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstdio>
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

// What the first write to standard output that failed failed with.
int outputError = 0;

// Streams of the standard library have error numbers of their own on Windows.
std::string ReasonOfStream(int error) { return std::generic_category().message(error); }

}  // namespace

std::string WhyNotOpened(const std::string& path) {
  if (std::string failure = WhyNotReadable(path); !failure.empty()) return failure;
  const std::size_t length = PathToWide(path).size();
  if (length < CNvxFile::kPathLength) return "cannot be opened";
  return fmt::format("the path has {} characters, and at most {} are possible", length, CNvxFile::kPathLength - 1);
}

InputFile::InputFile(const std::string& path) {
  if (path == kStandardStream) {
    KeepStandardInput();
  } else {
    failure_ = WhyNotReadable(path);
    path_ = PathToWide(path);
  }
}

void InputFile::KeepStandardInput() {
  kept_ = std::make_unique<TemporaryFile>();
  std::array<std::uint8_t, 65536> block;
  std::uint64_t length = 0;
  while (failure_.empty()) {
    errno = 0;
    const std::size_t got = std::fread(block.data(), 1, block.size(), stdin);
    if (std::ferror(stdin) != 0) failure_ = ReasonOfStream(errno);
    if (got == 0) break;
    length += got;
    const int error = kept_->Append(std::span(block).first(got));
    if (error != 0) failure_ = "no room for it in the temporary folder: " + ReasonOf(error);
    if (length > kLongestFile) failure_ = kTooLong;
  }
  path_ = kept_->Path();
}

HeldBytes::HeldBytes(std::span<const std::uint8_t> bytes) {
  if (const int error = file_.Append(bytes); error != 0) {
    throw std::runtime_error("no temporary file: " + ReasonOf(error));
  }
  path_ = file_.Path();
}

std::string WhyNotWritten(const std::string& path, int error) {
  if (IsFolder(path)) return "is a folder";
  const fs::path parent = PathOf(path).parent_path();
  const std::string folder = parent.empty() ? "." : TextOf(parent);
  if (!IsFolder(folder)) return fmt::format("there is no folder {}", folder);
  if (std::string why = WhyNotWritable(path); !why.empty()) return why;
  if (const std::string why = WhyNotWritable(folder); !why.empty()) {
    return fmt::format("{} in the folder {}", why, folder);
  }
  if (error != 0) return ReasonOf(error);
  const bool isLong = PathToWide(path).size() >= CNvxFile::kPathLength;
  return isLong ? "cannot be written under a path as long as this" : "cannot be written";
}

void WriteFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  if (bytes.empty() || bytes.size() > kLongestFile) {
    throw std::runtime_error(fmt::format("{}: {} bytes make no file", path, bytes.size()));
  }
  if (const std::string why = WhyNotReplaced(path); !why.empty()) throw std::runtime_error(path + ": " + why);
  CICMEntry carrier;
  std::memcpy(carrier.GetBuffer(static_cast<std::uint32_t>(bytes.size())), bytes.data(), bytes.size());
  const SaveUnderWay save;
  std::uint32_t unused = 0;
  ClearSystemError();
  if (!carrier.Save(PathToWide(path).c_str(), unused)) {
    const int error = LastSystemError();
    throw std::runtime_error(path + ": " + WhyNotWritten(path, error));
  }
}

void WriteOutput(const std::string& path, std::span<const std::uint8_t> bytes) {
  if (path == kStandardStream || IsStandardOutput(path)) {
    WriteStandardOutput({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    FinishStandardOutput();
    return;
  }
  const std::optional<int> error = WriteIntoStream(path, bytes);
  if (!error) {
    WriteFile(path, bytes);
  } else if (*error != 0) {
    throw std::runtime_error(path + ": " + ReasonOf(*error));
  }
}

std::string OwnNameOf(const std::string& output) {
  if (output == kStandardStream || IsDeviceName(output)) return "profile";
  if (const std::string why = WhyNoFileName(output); !why.empty()) throw std::runtime_error(output + ": " + why);
  const std::string name = FileNameOf(output);
  return name.empty() ? "profile" : name;
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
  throw std::runtime_error("standard output: " + (error != 0 ? ReasonOfStream(error) : "cannot be written"));
}

}  // namespace nvx::tool
