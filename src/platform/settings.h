// Settings that other systems keep system-wide, and the INI files that hold them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::platform {

// The text of an INI file, read once; empty when it cannot be read.
class IniFile {
 public:
  IniFile() = default;
  explicit IniFile(const std::string& path);  // UTF-8

  // Value of a key: section and key without regard to the case of ASCII letters, blanks around the value and one pair
  // of quotes dropped, the first match wins. Names and values are text of the ANSI code page, so that the second byte
  // of a character is never taken for a bracket or a letter. An empty section stands for the whole file. Nothing when
  // file, section or key is missing.
  std::optional<std::string> Text(std::string_view section, std::string_view key) const;

  // The values of several keys of one section, in the order of `keys`.
  std::vector<std::optional<std::string>> Texts(std::string_view section,
                                                std::initializer_list<std::string_view> keys) const;

 private:
  std::string text_;
};

// A value as an integer: leading decimal digits with an optional sign, 0 for text without any. `missing` when there is
// no value, an empty one, or one that does not fit into 32 bits.
std::int32_t IniInteger(const std::optional<std::string>& value, std::int32_t missing);

// Folder of the conversion table, UTF-8: NVXPROFILE_PROFILE_DIR, else the key ProfileDir in the first file
// nvxprofile/settings.ini below the folders of settings that has it; empty if none says so.
std::string ProfileFolder();

// Where programs keep their settings, the user's before the machine's, UTF-8: $XDG_CONFIG_HOME (~/.config by default)
// and /etc on a POSIX system, %APPDATA% and %ProgramData% on Windows.
std::vector<std::string> SettingsFolders();

}  // namespace nvx::platform
