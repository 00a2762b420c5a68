#include "platform/windows/path.h"

#include "platform/windows/wide.h"

#include <windows.h>

namespace nvx::platform {
namespace {

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kShare = L"\\\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";

std::optional<std::wstring> Refuse(DWORD error) {
  ::SetLastError(error);
  return std::nullopt;
}

// Resolves relative parts, turns slashes round, and drops what Windows drops at the end of names.
std::optional<std::wstring> Resolve(const std::wstring& path) {
  std::wstring full(MAX_PATH, L'\0');
  while (true) {
    const DWORD size = ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0) return std::nullopt;
    const bool whole = size < full.size();
    full.resize(size);
    if (whole) return full;
  }
}

bool IsForbidden(wchar_t unit) {
  return unit < L' ' || std::wstring_view(L"<>:\"|?*").find(unit) != std::wstring_view::npos;
}

}  // namespace

std::optional<std::wstring> FullPath(std::u16string_view path) {
  if (path.empty() || path.find(u'\0') != path.npos) return Refuse(ERROR_INVALID_NAME);
  std::wstring text = NativeText(path);
  if (!text.starts_with(kPrefix)) {
    std::optional<std::wstring> full = Resolve(text);
    if (!full) return std::nullopt;
    if (full->starts_with(kDevice)) return Refuse(ERROR_INVALID_NAME);
    text = full->starts_with(kShare) ? std::wstring(kPrefix) + L"UNC" + full->substr(1) : std::wstring(kPrefix) + *full;
  }
  // A colon stands behind the letter of the drive, and nowhere else.
  constexpr std::size_t kDriveColon = 5;
  for (std::size_t i = kPrefix.size(); i < text.size(); ++i) {
    if (IsForbidden(text[i]) && !(text[i] == L':' && i == kDriveColon)) return Refuse(ERROR_INVALID_NAME);
  }
  return text;
}

}  // namespace nvx::platform
