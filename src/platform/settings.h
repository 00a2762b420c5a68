// Settings that other systems keep system-wide, and the INI files that hold them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nvx::platform {

// Value of a key of an INI file, read anew at each call: section and key without regard to case, blanks around the
// value and one pair of quotes dropped, the first match wins. An empty section
// stands for the whole file. Nothing when file, section or key is missing. The path is
// UTF-8.
std::optional<std::string> ReadIniText(const std::string& path, std::string_view section, std::string_view key);

// The same as an integer: leading decimal digits with an optional sign, 0 for text without any; `missing` when there is
// no such key.
std::int32_t ReadIniInteger(const std::string& path, std::string_view section, std::string_view key,
                            std::int32_t missing);

// Folder of the conversion table, UTF-8: NVXPROFILE_PROFILE_DIR, else the key ProfileDir in
// $XDG_CONFIG_HOME/nvxprofile/settings.ini (~/.config by default), else in /etc/nvxprofile/settings.ini; empty if none
// says so.
std::string ProfileFolder();

}  // namespace nvx::platform
