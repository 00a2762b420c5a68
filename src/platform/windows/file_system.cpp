#include "platform/file_system.h"

#include "platform/locale.h"
#include "platform/windows/path.h"

#include <nvxprofile/file.h>

#include <windows.h>

#include <algorithm>

namespace nvx::platform {
namespace {

HANDLE Native(FileHandle file) { return reinterpret_cast<HANDLE>(file); }

static_assert(kGenericRead == GENERIC_READ && kGenericWrite == GENERIC_WRITE && kShareRead == FILE_SHARE_READ &&
              kShareReadAndWrite == (FILE_SHARE_READ | FILE_SHARE_WRITE) && kCreateAlways == CREATE_ALWAYS &&
              kOpenExisting == OPEN_EXISTING);

// Moves bytes by calls that each take less than the four gigabytes that Windows can count.
template <class Call>
std::size_t Transfer(std::size_t count, Call call) {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  std::size_t done = 0;
  while (done < count) {
    DWORD moved = 0;
    if (call(done, static_cast<DWORD>(std::min(count - done, kMost)), &moved) == FALSE || moved == 0) break;
    done += moved;
  }
  return done;
}

}  // namespace

std::string WideToPath(std::u16string_view path) { return WideToUtf8(path); }
std::u16string PathToWide(std::string_view path) { return Utf8ToWide(path); }

FileHandle OpenFile(std::u16string_view path, std::uint32_t access, std::uint32_t share, std::uint32_t creation) {
  const auto full = FullPath(path);
  if (!full) return kNoFile;
  return reinterpret_cast<FileHandle>(
      ::CreateFileW(full->c_str(), access, share, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr));
}

void CloseFile(FileHandle file) { ::CloseHandle(Native(file)); }

std::size_t ReadFile(FileHandle file, void* buffer, std::size_t count) {
  return Transfer(count, [&](std::size_t done, DWORD size, DWORD* moved) {
    return ::ReadFile(Native(file), static_cast<char*>(buffer) + done, size, moved, nullptr);
  });
}

std::size_t WriteFile(FileHandle file, const void* buffer, std::size_t count) {
  return Transfer(count, [&](std::size_t done, DWORD size, DWORD* moved) {
    return ::WriteFile(Native(file), static_cast<const char*>(buffer) + done, size, moved, nullptr);
  });
}

std::int64_t SeekFile(FileHandle file, std::int64_t offset, Origin origin) {
  const DWORD method = origin == Origin::kBegin ? FILE_BEGIN : origin == Origin::kPosition ? FILE_CURRENT : FILE_END;
  LARGE_INTEGER distance;
  distance.QuadPart = offset;
  LARGE_INTEGER position;
  return ::SetFilePointerEx(Native(file), distance, &position, method) != FALSE ? position.QuadPart : -1;
}

std::int64_t FileSize(FileHandle file) {
  LARGE_INTEGER size;
  return ::GetFileSizeEx(Native(file), &size) != FALSE ? size.QuadPart : -1;
}

bool FileExists(std::u16string_view path) {
  const auto full = FullPath(path);
  return full && ::GetFileAttributesW(full->c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<SYSTEMTIME> FileCreationTime(std::u16string_view path) {
  const auto full = FullPath(path);
  WIN32_FILE_ATTRIBUTE_DATA data;
  SYSTEMTIME time{};
  if (!full || ::GetFileAttributesExW(full->c_str(), GetFileExInfoStandard, &data) == FALSE ||
      ::FileTimeToSystemTime(&data.ftCreationTime, &time) == FALSE) {
    return std::nullopt;
  }
  return time;
}

std::uint32_t LastError() { return ::GetLastError(); }

}  // namespace nvx::platform
