// What the tool asks of the system about files. Error numbers are those of the system's own calls: errno, or
// GetLastError on Windows.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nvx::tool {

// The sizes that profiles store have 32 bits.
inline constexpr std::uint64_t kLongestFile = 0xFFFFFFFF;
inline constexpr const char* kTooLong = "is longer than any profile";

void ClearSystemError();
int LastSystemError();
std::string ReasonOf(int error);

// True for a folder, and for a link to one.
bool IsFolder(const std::string& path);

struct FolderItem {
  std::string name;
  bool isFile = false;
  bool isFolder = false;  // links to folders are none: they may lead round in circles
  std::uint64_t size = 0;
};

// What stands in a folder, by name; if that cannot be told, why.
struct FolderItems {
  std::vector<FolderItem> items;
  std::string failure;
};
FolderItems ItemsOf(const std::string& folder);

// Makes a folder, and those above it that are missing. Why there is none now; empty if there is.
std::string MakeFolders(const std::string& path);

// One name for a file, however the path to it is written.
std::string CanonicalName(const std::string& path);

// The files and folders that an argument names. Where shells leave wildcards to programs, those that fit what stands
// behind the last separator, by name; the argument itself where nothing fits, and where shells expand wildcards.
std::vector<std::string> FilesNamedBy(const std::string& argument);

// True if the name alone says that what is written there goes to a device, as with NUL on Windows.
bool IsDeviceName(const std::string& path);

// Why no file can have the name; empty if one can.
std::string WhyNoFileName(const std::string& path);

// Why the file cannot be read as it stands ("No such file or directory", "is a folder", ...); empty if it can. FIFOs
// and devices are refused without being opened, since a load seeks, and so is what is longer than any profile.
std::string WhyNotReadable(const std::string& path);

// Why nothing may be put in the place of what stands at the path: it is no plain file, or a link to what is not there.
// Empty if something may.
std::string WhyNotReplaced(const std::string& path);

// Why this process may not write the file, or into the folder, that is there; empty if it may.
std::string WhyNotWritable(const std::string& path);

// True if the path stands for standard output, which is to be written to in order.
bool IsStandardOutput(const std::string& path);

// Writes into what is written to as it is, and never replaced: a descriptor of this process, a FIFO, a character
// device. 0 or the error number; nothing, and nothing done, if the path stands for a file or for nothing yet.
std::optional<int> WriteIntoStream(const std::string& path, std::span<const std::uint8_t> bytes);

// A file in the temporary folder that goes with this object.
class TemporaryFile {
 public:
  TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  // 0 or the error number, also where the file could not be made. Not to be called behind Path.
  int Append(std::span<const std::uint8_t> bytes);
  // The path by which the library opens it.
  std::u16string Path();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Makes a folder that nobody else has, and may look into, in `parent`. Its path, or nothing and the error number.
std::optional<std::string> MakeOwnFolder(const std::string& parent, int& error);

}  // namespace nvx::tool
