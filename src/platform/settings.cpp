#include "platform/settings.h"

#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/locale.h"

#include <nvxprofile/file.h>

#include <algorithm>
#include <charconv>
#include <utility>

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

// From the first line on that starts with a bracket; empty if there is none.
std::string_view FromSectionLine(std::string_view lines) {
  for (std::size_t at = 0; (at = lines.find('[', at)) != lines.npos;) {
    const std::size_t start = at == 0 ? 0 : lines.rfind('\n', at - 1) + 1;
    if (lines.substr(start, at - start).find_first_not_of(kBlanks) == lines.npos) return lines.substr(start);
    at = std::min(lines.find('\n', at), lines.size());
  }
  return {};
}

// Searches a section of an INI file for values.
class IniSearch {
 public:
  IniSearch(std::string_view section, std::initializer_list<std::string_view> keys)
      : section_(section), keys_(keys), values_(keys.size()), missing_(keys.size()), inside_(section.empty()) {}

  std::vector<std::optional<std::string>> Run(std::string_view lines) {
    while (missing_ != 0) {
      // Most lines of a long file belong to other sections.
      if (!inside_) lines = FromSectionLine(lines);
      if (lines.empty()) break;
      const std::size_t end = lines.find('\n');
      TakeLine(lines.substr(0, end));
      lines.remove_prefix(end == lines.npos ? lines.size() : end + 1);
    }
    return std::move(values_);
  }

 private:
  void TakeLine(std::string_view line) {
    line = Trim(line);
    if (line.empty() || line.front() == ';') return;
    if (line.front() == '[') {
      inside_ = section_.empty() || EqualNames(SectionName(line, page_), section_, page_);
      return;
    }
    const std::size_t equals = inside_ ? line.find('=') : line.npos;
    if (equals == line.npos) return;
    const std::string_view name = Trim(line.substr(0, equals));
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (values_[i] || !EqualNames(name, keys_.begin()[i], page_)) continue;
      values_[i] = Unquote(Trim(line.substr(equals + 1)));
      --missing_;
    }
  }

  std::string_view section_;
  std::initializer_list<std::string_view> keys_;
  std::vector<std::optional<std::string>> values_;
  std::size_t missing_;
  bool inside_;
  std::uint32_t page_ = AnsiCodePage();
};

}  // namespace

IniFile::IniFile(const std::string& path) {
  const ScopedFile file(OpenFile(PathToWide(path), kGenericRead, kShareReadAndWrite, kOpenExisting));
  if (!file.IsOpen()) return;
  constexpr std::size_t kStep = std::size_t{1} << 16;
  for (std::size_t got = kStep; got == kStep;) {
    const std::size_t held = text_.size();
    text_.resize(held + kStep);
    got = ReadFile(file.Handle(), text_.data() + held, kStep);
    text_.resize(held + got);
  }
  if (text_.starts_with(kByteOrderMark)) text_.erase(0, kByteOrderMark.size());
}

std::vector<std::optional<std::string>> IniFile::Texts(std::string_view section,
                                                       std::initializer_list<std::string_view> keys) const {
  return IniSearch(section, keys).Run(text_);
}

std::optional<std::string> IniFile::Text(std::string_view section, std::string_view key) const {
  return Texts(section, {key}).front();
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
  if (auto folder = EnvironmentVariable("NVXPROFILE_PROFILE_DIR")) return *folder;
  for (const std::string& folder : SettingsFolders()) {
    const auto value = IniFile(folder + "/nvxprofile/settings.ini").Text({}, "ProfileDir");
    if (value && !value->empty()) return *value;
  }
  return {};
}

}  // namespace nvx::platform
