#include "platform/settings.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>

namespace nvx::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualNames(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view Unquote(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
  return quoted ? value.substr(1, value.size() - 2) : value;
}

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

std::optional<std::string> ReadIniText(const std::string& path, std::string_view section, std::string_view key) {
  std::ifstream file(path);
  bool inside = section.empty();
  for (std::string text; std::getline(file, text);) {
    const std::string_view line = Trim(text);
    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[') {
      const std::size_t end = line.find(']');
      const std::string_view name = Trim(line.substr(1, end == line.npos ? line.npos : end - 1));
      inside = section.empty() || EqualNames(name, section);
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!inside || equals == line.npos || !EqualNames(Trim(line.substr(0, equals)), key)) continue;
    return std::string(Unquote(Trim(line.substr(equals + 1))));
  }
  return std::nullopt;
}

std::int32_t ReadIniInteger(const std::string& path, std::string_view section, std::string_view key,
                            std::int32_t missing) {
  const std::optional<std::string> text = ReadIniText(path, section, key);
  if (!text) return missing;
  std::string_view digits = Trim(*text);
  const bool negative = !digits.empty() && digits.front() == '-';
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  std::uint32_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return static_cast<std::int32_t>(negative ? 0u - number : number);
}

std::string ProfileFolder() {
  if (std::string folder = Variable("NVXPROFILE_PROFILE_DIR"); !folder.empty()) return folder;
  std::string home = Variable("XDG_CONFIG_HOME");
  if (home.empty() && !Variable("HOME").empty()) home = Variable("HOME") + "/.config";
  for (const std::string& folder : {home, std::string("/etc")}) {
    if (folder.empty()) continue;
    const auto value = ReadIniText(folder + "/nvxprofile/settings.ini", {}, "ProfileDir");
    if (value && !value->empty()) return *value;
  }
  return {};
}

}  // namespace nvx::platform
