// The files that a command line names. "-" is standard input where something is read and standard output where
// something is written.
#pragma once

#include "system_files.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace nvx::tool {

inline constexpr const char* kStandardStream = "-";

// Why the library did not open the file; never empty.
std::string WhyNotOpened(const std::string& path);

// A file to read from. What comes through standard input is kept in a temporary file for as long as this object
// lives, so that it can be read like any other.
class InputFile {
 public:
  explicit InputFile(const std::string& path);

  // Empty if the file can be read.
  const std::string& Failure() const { return failure_; }
  // The path to open.
  const std::u16string& Path() const { return path_; }

 private:
  void KeepStandardInput();

  std::unique_ptr<TemporaryFile> kept_;
  std::string failure_;
  std::u16string path_;
};

// Bytes as a temporary file, for readers that go by path.
class HeldBytes {
 public:
  // Throws std::runtime_error if there is no room for them.
  explicit HeldBytes(std::span<const std::uint8_t> bytes);
  const std::u16string& Path() const { return path_; }

 private:
  TemporaryFile file_;
  std::u16string path_;
};

// Writes a file whole: what stands at the path is replaced at the very end, as the library saves everything. A link is
// followed, one that leads nowhere refused, and so is all that is no plain file. Throws std::runtime_error with path
// and reason.
void WriteFile(const std::string& path, std::span<const std::uint8_t> bytes);

// The same for a path that the user gave, which may mean more: standard output for "-", and pipes and character
// devices, which are written to as they are and never read.
void WriteOutput(const std::string& path, std::span<const std::uint8_t> bytes);

// The bytes of a file. Throws std::runtime_error with path and reason.
std::string ReadInput(const std::string& path);

// What a profile that is written there calls itself: after the file, and "profile" where there is none. Throws
// std::runtime_error with path and reason for a name that no file can have.
std::string OwnNameOf(const std::string& output);

// Why a file could not be written, looked up after a write failed with that error number of the system (0 for none).
std::string WhyNotWritten(const std::string& path, int error);

// Writes to standard output; FinishStandardOutput tells whether it got there.
void WriteStandardOutput(std::string_view text);

// Hands over what is left of standard output. Throws std::runtime_error if any of it is lost.
void FinishStandardOutput();

}  // namespace nvx::tool
