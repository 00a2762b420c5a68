#include "platform/settings.h"

#include "platform/locale.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace nvx::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualNames(std::string_view a, std::string_view b, std::uint32_t page) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
    // The second byte of a character may look like a letter, and then its case counts.
    if (IsLeadByte(page, a[i]) && ++i < a.size() && a[i] != b[i]) return false;
  }
  return true;
}

std::string_view Unquote(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
  return quoted ? value.substr(1, value.size() - 2) : value;
}

// The name in a section line, which starts with its bracket.
std::string_view SectionName(std::string_view line, std::uint32_t page) {
  std::size_t end = 1;
  while (end < line.size() && line[end] != ']') end += IsLeadByte(page, line[end]) ? 2 : 1;
  return Trim(line.substr(1, std::min(end, line.size()) - 1));
}

struct CloseStream {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// Calls visit(line) for each line of a file until it gives false. The file passes through one block, which grows only
// for a line that is longer.
template <class Visit>
void ForEachLine(const std::string& path, Visit visit) {
  const std::unique_ptr<std::FILE, CloseStream> file(std::fopen(path.c_str(), "rbe"));
  if (!file) return;
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  std::string block(std::size_t{1} << 16, '\0');
  std::size_t held = 0;
  while (true) {
    if (held == block.size()) block.resize(2 * block.size());
    const std::size_t got = std::fread(block.data() + held, 1, block.size() - held, file.get());
    std::string_view rest(block.data(), held + got);
    for (std::size_t end; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1)) {
      if (!visit(rest.substr(0, end))) return;
    }
    if (got == 0) {
      visit(rest);
      return;
    }
    held = rest.size();
    std::copy(rest.begin(), rest.end(), block.begin());
  }
}

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

std::vector<std::optional<std::string>> ReadIniTexts(const std::string& path, std::string_view section,
                                                     std::initializer_list<std::string_view> keys) {
  std::vector<std::optional<std::string>> values(keys.size());
  const std::uint32_t page = AnsiCodePage();
  std::size_t missing = keys.size();
  bool inside = section.empty();
  bool first = true;
  ForEachLine(path, [&](std::string_view text) {
    if (first && text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    first = false;
    const std::size_t start = text.find_first_not_of(kBlanks);
    if (start == text.npos || text[start] == ';') return true;
    if (text[start] == '[') {
      inside = section.empty() || EqualNames(SectionName(text.substr(start), page), section, page);
      return true;
    }
    const std::size_t equals = inside ? text.find('=') : text.npos;
    if (equals == text.npos) return true;
    const std::string_view name = Trim(text.substr(0, equals));
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (values[i] || !EqualNames(name, keys.begin()[i], page)) continue;
      values[i] = Unquote(Trim(text.substr(equals + 1)));
      --missing;
    }
    return missing != 0;
  });
  return values;
}

std::optional<std::string> ReadIniText(const std::string& path, std::string_view section, std::string_view key) {
  return ReadIniTexts(path, section, {key}).front();
}

std::int32_t IniInteger(const std::optional<std::string>& value, std::int32_t missing) {
  std::string_view digits = value ? Trim(*value) : std::string_view();
  if (digits.empty()) return missing;
  const bool negative = digits.front() == '-';
  if (negative || digits.front() == '+') digits.remove_prefix(1);
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error == std::errc::result_out_of_range) return missing;
  constexpr std::uint32_t kLowest = 0x80000000u;
  if (negative && number > kLowest) return missing;
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
