// Paths as Windows takes them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nvx::platform {

// The full path, with the prefix that lets it be of any length. Nothing, with the system's error set, for a name that
// stands for a device such as CON or for a stream inside a file, and for characters that a name may not have: what was
// saved under such a name would be lost, or part of another file.
std::optional<std::wstring> FullPath(std::u16string_view path);

}  // namespace nvx::platform
