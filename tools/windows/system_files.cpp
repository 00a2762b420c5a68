#include "system_files.h"

#include "paths.h"
#include "profile_list.h"

#include <nvxprofile/text_conversion.h>

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace nvx::tool {
namespace {

std::wstring WideOf(const std::string& text) { return PathOf(text).wstring(); }

// The full path. That of a device, such as NUL, starts with kDevice.
constexpr std::wstring_view kDevice = L"\\\\.\\";
constexpr std::wstring_view kShare = L"\\\\";
constexpr std::wstring_view kLong = L"\\\\?\\";

std::wstring FullName(const std::string& path) {
  const std::wstring name = WideOf(path);
  std::wstring full(::GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(::GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

bool IsDevice(const std::string& path) { return FullName(path).starts_with(kDevice); }

// Characters that no name has, and a colon that stands elsewhere than behind the letter of the drive: it would name a
// stream inside a file.
bool IsForbidden(const std::wstring& full) {
  const std::wstring_view name = std::wstring_view(full).substr(full.starts_with(kLong) ? kLong.size() : 0);
  constexpr std::size_t kDriveColon = 1;
  return name.find_first_of(L"<>\"|?*") != name.npos || name.find(L':', kDriveColon + 1) != name.npos;
}

// With the prefix that lets a path be of any length.
std::wstring NativeName(const std::string& path) {
  const std::wstring full = FullName(path);
  if (full.starts_with(kDevice) || full.starts_with(kLong)) return full;
  return full.starts_with(kShare) ? std::wstring(kLong) + L"UNC" + full.substr(1) : std::wstring(kLong) + full;
}

DWORD AttributesOf(const std::string& path) { return ::GetFileAttributesW(NativeName(path).c_str()); }

// Names that differ in case alone name one file.
std::wstring UpperCase(const std::wstring& text) {
  const auto map = [&](wchar_t* to, int room) {
    return ::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.data(), static_cast<int>(text.size()), to, room,
                           nullptr, nullptr, 0);
  };
  std::wstring upper(static_cast<std::size_t>(text.empty() ? 0 : map(nullptr, 0)), L'\0');
  if (!upper.empty()) map(upper.data(), static_cast<int>(upper.size()));
  return upper;
}

std::string UpperCase(const std::string& text) { return TextOf(std::filesystem::path(UpperCase(WideOf(text)))); }

bool HasWildcards(const std::string& name) { return name.find_first_of("*?") != name.npos; }

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (IsOpen()) ::CloseHandle(handle_);
  }

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Why the file that is there does not open with this access; empty if it does.
std::string WhyNotOpen(const std::wstring& name, DWORD access) {
  const Handle file(::CreateFileW(name.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  return file.IsOpen() ? std::string() : ReasonOf(LastSystemError());
}

int WriteAll(HANDLE file, std::span<const std::uint8_t> bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  while (!bytes.empty()) {
    DWORD put = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
    if (::WriteFile(file, bytes.data(), size, &put, nullptr) == FALSE) return LastSystemError();
    if (put == 0) return ERROR_WRITE_FAULT;
    bytes = bytes.subspan(put);
  }
  return 0;
}

// A name that nobody else has: those of one process differ by their number.
std::string OwnName(const std::string& parent, unsigned number) {
  return TextOf(PathOf(parent) /
                PathOf(".nvx-" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(number)));
}

constexpr unsigned kTries = 10000;

}  // namespace

void ClearSystemError() { ::SetLastError(0); }
int LastSystemError() { return static_cast<int>(::GetLastError()); }

// In the words of the C library, which are the same on every system, as far as it has a word.
std::string ReasonOf(int error) {
  switch (error) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return "is in use by another program";
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
      return "has a name that Windows forbids";
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
      return std::generic_category().message(ENOENT);
    case ERROR_CANT_RESOLVE_FILENAME:
      return std::generic_category().message(ELOOP);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return std::generic_category().message(ENOSPC);
    default:
      break;
  }
  const std::error_condition condition = std::system_category().default_error_condition(error);
  return condition.category() == std::generic_category() ? condition.message()
                                                         : "error " + std::to_string(error) + " of Windows";
}

bool IsFolder(const std::string& path) {
  const DWORD attributes = AttributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

FolderItems ItemsOf(const std::string& folder) {
  FolderItems result;
  WIN32_FIND_DATAW found;
  const std::wstring all = NativeName(TextOf(PathOf(folder) / "*"));
  const HANDLE search = ::FindFirstFileW(all.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    result.failure = ReasonOf(LastSystemError());
    return result;
  }
  do {
    const std::wstring_view name = found.cFileName;
    if (name == L"." || name == L"..") continue;
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const std::uint64_t size = (std::uint64_t{found.nFileSizeHigh} << 32) | found.nFileSizeLow;
    result.items.push_back({TextOf(std::filesystem::path(name)), !isFolder, isFolder && !isLink, size});
  } while (::FindNextFileW(search, &found) != FALSE);
  if (LastSystemError() != ERROR_NO_MORE_FILES) result.failure = ReasonOf(LastSystemError());
  ::FindClose(search);
  std::sort(result.items.begin(), result.items.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return result;
}

std::string MakeFolders(const std::string& path) {
  if (IsFolder(path)) return {};
  const std::string parent = TextOf(PathOf(path).parent_path());
  if (!parent.empty() && parent.size() < path.size()) {
    if (std::string why = MakeFolders(parent); !why.empty()) return why;
  }
  // One with a separator at its end has been made as its own parent.
  if (::CreateDirectoryW(NativeName(path).c_str(), nullptr) != FALSE || IsFolder(path)) return {};
  return ReasonOf(LastSystemError());
}

std::string CanonicalName(const std::string& path) { return TextOf(std::filesystem::path(UpperCase(FullName(path)))); }

std::vector<std::string> FilesNamedBy(const std::string& argument) {
  const std::string pattern = FileNameOf(argument);
  if (!HasWildcards(pattern)) return {argument};
  const std::string folder = argument.substr(0, argument.size() - pattern.size());
  std::vector<std::string> files;
  for (const FolderItem& item : ItemsOf(folder.empty() ? "." : folder).items) {
    // The system itself would also look at the short names of old programs.
    if (MatchesWildcards(UpperCase(item.name), UpperCase(pattern))) files.push_back(folder + item.name);
  }
  return files.empty() ? std::vector{argument} : files;
}

// What a folder or an extension surrounds, such as nul.icc, was meant for a file, and what is written to it would be
// lost.
bool IsDeviceName(const std::string& path) {
  if (!IsDevice(path)) return false;
  const std::wstring name = WideOf(path);
  return name.starts_with(kDevice) || name.find_first_of(L"./\\:") == name.npos;
}

std::string WhyNoFileName(const std::string& path) {
  if (IsDevice(path)) return IsDeviceName(path) ? "is a device" : "has the name of a device";
  return IsForbidden(FullName(path)) ? ReasonOf(ERROR_INVALID_NAME) : std::string();
}

std::string WhyNotReadable(const std::string& path) {
  if (HasWildcards(FileNameOf(path))) return "no file has such a name";
  if (IsDevice(path)) return "is a device";
  if (IsForbidden(FullName(path))) return ReasonOf(ERROR_INVALID_NAME);
  const std::wstring name = NativeName(path);
  const DWORD attributes = ::GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return ReasonOf(LastSystemError());
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return "is a folder";
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (::GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &data) != FALSE && data.nFileSizeHigh != 0) {
    return kTooLong;
  }
  return WhyNotOpen(name, GENERIC_READ);
}

std::string WhyNotReplaced(const std::string& path) {
  if (std::string why = WhyNoFileName(path); !why.empty()) return why;
  return IsFolder(path) ? "is a folder" : "";
}

std::string WhyNotWritable(const std::string& path) {
  const std::wstring name = NativeName(path);
  const DWORD attributes = ::GetFileAttributesW(name.c_str());
  // Into which folders a process may write shows only when it does.
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {};
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return "is read-only";
  return WhyNotOpen(name, GENERIC_WRITE | DELETE);
}

bool IsStandardOutput(const std::string&) { return false; }

std::optional<int> WriteIntoStream(const std::string& path, std::span<const std::uint8_t> bytes) {
  if (!IsDeviceName(path)) return std::nullopt;
  const Handle device(
      ::CreateFileW(FullName(path).c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  return device.IsOpen() ? WriteAll(device.Get(), bytes) : LastSystemError();
}

// The library opens it by its name, so that it has one.
struct TemporaryFile::State {
  std::string path;
  HANDLE file = INVALID_HANDLE_VALUE;
  int error = 0;

  bool IsOpen() const { return file != INVALID_HANDLE_VALUE; }
  void Close() {
    if (IsOpen()) ::CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
  }
};

TemporaryFile::TemporaryFile() : state_(std::make_unique<State>()) {
  const std::string folder = TemporaryFolder();
  for (unsigned i = 0; i < kTries; ++i) {
    state_->path = OwnName(folder, i);
    state_->file = ::CreateFileW(NativeName(state_->path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_TEMPORARY, nullptr);
    if (state_->IsOpen()) return;
    state_->error = LastSystemError();
    if (state_->error != ERROR_FILE_EXISTS && state_->error != ERROR_ALREADY_EXISTS) break;
  }
  state_->path.clear();
}

TemporaryFile::~TemporaryFile() {
  state_->Close();
  if (!state_->path.empty()) ::DeleteFileW(NativeName(state_->path).c_str());
}

int TemporaryFile::Append(std::span<const std::uint8_t> bytes) {
  return state_->IsOpen() ? WriteAll(state_->file, bytes) : state_->error;
}

std::u16string TemporaryFile::Path() {
  state_->Close();
  return PathToWide(state_->path);
}

std::optional<std::string> MakeOwnFolder(const std::string& parent, int& error) {
  for (unsigned i = 0; i < kTries; ++i) {
    std::string path = OwnName(parent, i);
    if (::CreateDirectoryW(NativeName(path).c_str(), nullptr) != FALSE) return path;
    error = LastSystemError();
    if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) break;
  }
  return std::nullopt;
}

}  // namespace nvx::tool
