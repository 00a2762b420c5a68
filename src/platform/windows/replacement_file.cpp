#include "platform/replacement_file.h"

#include "platform/windows/path.h"

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace nvx::platform {
namespace {

HANDLE Native(FileHandle file) { return reinterpret_cast<HANDLE>(file); }

// The file that a link leads to, else the path itself.
std::wstring ResolveLink(const std::wstring& path, HANDLE target) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return path;
  const DWORD size = ::GetFinalPathNameByHandleW(target, nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring final(size, L'\0');
  const DWORD length = ::GetFinalPathNameByHandleW(target, final.data(), size, FILE_NAME_NORMALIZED);
  if (length == 0 || length >= size) return path;
  final.resize(length);
  return final;
}

// A file that is gone once its handle is closed, even by the end of the process.
bool SetPassing(HANDLE file, bool passing) {
  FILE_DISPOSITION_INFO info{};
  info.DeleteFile = passing;
  return ::SetFileInformationByHandle(file, FileDispositionInfo, &info, sizeof info) != FALSE;
}

HANDLE CreateNew(const std::wstring& target) {
  constexpr std::size_t kLongestName = 200;
  const std::size_t slash = target.rfind(L'\\');
  const std::wstring start = target.substr(0, slash + 1) + L"." + target.substr(slash + 1, kLongestName) +
                             L".nvx-new-" + std::to_wstring(::GetCurrentProcessId()) + L"-";
  constexpr int kTries = 1000;
  for (int i = 0; i < kTries; ++i) {
    const HANDLE file =
        ::CreateFileW((start + std::to_wstring(i)).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE | WRITE_DAC, 0,
                      nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
      SetPassing(file, true);
      return file;
    }
    // A name whose file is on its way out is refused as well.
    const DWORD error = ::GetLastError();
    if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS && error != ERROR_SHARING_VIOLATION) break;
  }
  return INVALID_HANDLE_VALUE;
}

// Gives a new file what the owner of the old one would miss: who may read it, its attributes and when it was made. As
// far as the file system keeps such things.
void TakeAfter(HANDLE file, HANDLE old) {
  DWORD size = 0;
  ::GetKernelObjectSecurity(old, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> rights(size);
  if (size != 0 && ::GetKernelObjectSecurity(old, DACL_SECURITY_INFORMATION, rights.data(), size, &size) != FALSE)
    ::SetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, rights.data());
  FILE_BASIC_INFO info{};
  if (::GetFileInformationByHandleEx(old, FileBasicInfo, &info, sizeof info) == FALSE) return;
  FILE_BASIC_INFO taken{};
  taken.CreationTime = info.CreationTime;
  taken.FileAttributes = info.FileAttributes;
  ::SetFileInformationByHandle(file, FileBasicInfo, &taken, sizeof taken);
}

// One step of the file system, which leaves the old file or the new one under the name.
bool Rename(HANDLE file, const std::wstring& target) {
  const std::size_t size = target.size() * sizeof(wchar_t);
  std::vector<std::byte> block(sizeof(FILE_RENAME_INFO) + size);
  auto* const info = reinterpret_cast<FILE_RENAME_INFO*>(block.data());
  info->ReplaceIfExists = TRUE;
  info->FileNameLength = static_cast<DWORD>(size);
  std::memcpy(info->FileName, target.data(), size);
  return ::SetFileInformationByHandle(file, FileRenameInfo, info, static_cast<DWORD>(block.size())) != FALSE;
}

}  // namespace

// The new file is held by its handle alone and needs no tidying up: see SetPassing.
class ReplacementFile::State {
 public:
  FileHandle Create(std::u16string_view target);
  bool Commit(FileHandle file) const;

 private:
  std::wstring target_;
};

FileHandle ReplacementFile::State::Create(std::u16string_view target) {
  const auto path = FullPath(target);
  if (!path) return kNoFile;
  target_ = *path;
  const DWORD attributes = ::GetFileAttributesW(path->c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    ::SetLastError(ERROR_ACCESS_DENIED);
    return kNoFile;
  }
  // A file that may not be written, or that somebody else holds open, is not replaced.
  const HANDLE old = ::CreateFileW(path->c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr);
  if (old == INVALID_HANDLE_VALUE) {
    if (::GetLastError() != ERROR_FILE_NOT_FOUND) return kNoFile;
    return reinterpret_cast<FileHandle>(CreateNew(target_));
  }
  const ScopedFile closer(reinterpret_cast<FileHandle>(old));
  if (::GetFileType(old) != FILE_TYPE_DISK) {
    ::SetLastError(ERROR_INVALID_NAME);
    return kNoFile;
  }
  target_ = ResolveLink(*path, old);
  const HANDLE file = CreateNew(target_);
  if (file != INVALID_HANDLE_VALUE) TakeAfter(file, old);
  return reinterpret_cast<FileHandle>(file);
}

bool ReplacementFile::State::Commit(FileHandle file) const {
  const HANDLE handle = Native(file);
  if (::FlushFileBuffers(handle) == FALSE || !SetPassing(handle, false)) return false;
  if (Rename(handle, target_)) return true;
  const DWORD error = ::GetLastError();
  SetPassing(handle, true);
  ::SetLastError(error);
  return false;
}

ReplacementFile::ReplacementFile() : state_(std::make_unique<State>()) {}
ReplacementFile::~ReplacementFile() = default;
FileHandle ReplacementFile::Create(std::u16string_view target) { return state_->Create(target); }
bool ReplacementFile::Commit(FileHandle file) { return state_->Commit(file); }

}  // namespace nvx::platform
