// nvxprofile list: one line for each profile of a folder, from the headers alone.
#include "clock.h"
#include "command.h"
#include "files.h"
#include "loading.h"
#include "numbers.h"
#include "profile_list.h"
#include "terminal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iomanip>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

const std::vector<std::string> kDefaultColumns{"model",   "ink-set", "resolution",  "media",
                                               "version", "updated", "calibration", "file"};

struct ListOptions {
  std::vector<std::string> paths;
  bool recursive = false;
  std::vector<std::string> columns;
  std::vector<std::string> sort;
  std::map<std::string, std::string> patterns;  // by column
  std::string olderThan;
  std::string newerThan;
  bool json = false;
  bool csv = false;
  unsigned jobs = 0;
};

constexpr std::uint32_t kMostUnits = 999'999;

// The moment that "90d", "2w" or "2024-05-31" means, in seconds since 1970.
std::int64_t MomentOf(const std::string& option, const std::string& text) {
  std::tm date{};
  std::istringstream in(text);
  const bool isRead = static_cast<bool>(in >> std::get_time(&date, "%Y-%m-%d"));
  // The end of the text may come early, too.
  if (isRead && date.tm_mday != 0 && in.peek() == std::istringstream::traits_type::eof()) {
    date.tm_isdst = -1;
    return std::mktime(&date);
  }
  static const std::map<char, std::int64_t> kSeconds{{'h', 3600}, {'d', 86400}, {'w', 7 * 86400}, {'y', 31557600}};
  const auto unit = text.empty() ? kSeconds.end() : kSeconds.find(text.back());
  const auto count = NumberOf<std::uint32_t>(std::string_view(text).substr(0, text.empty() ? 0 : text.size() - 1));
  if (unit == kSeconds.end() || !count || *count > kMostUnits) {
    throw UsageError(option, "an age such as 12h, 90d, 6w or 1y or a date such as 2024-05-31 is expected: " + text);
  }
  return PresentTime() - std::int64_t{*count} * unit->second;
}

// One of the columns, or an error that names them all.
void CheckColumns(const std::string& option, const std::vector<std::string>& names, bool withSign) {
  for (const std::string& name : names) {
    const std::string bare = withSign && name.starts_with('-') ? name.substr(1) : name;
    if (FindColumn(bare) != nullptr) continue;
    std::vector<std::string> known;
    for (const Column& column : Columns()) known.emplace_back(column.name);
    throw UsageError(option, fmt::format("{} is none of {}", name, fmt::join(known, ", ")));
  }
}

bool IsWanted(const ProfileLine& line, const ListOptions& options, std::optional<std::int64_t> before,
              std::optional<std::int64_t> after) {
  for (const auto& [name, pattern] : options.patterns) {
    if (!pattern.empty() && !MatchesWildcards(FindColumn(name)->text(line), pattern)) return false;
  }
  if ((before || after) && line.updated == 0) return false;
  return (!before || line.updated < *before) && (!after || line.updated >= *after);
}

void Sort(std::vector<ProfileLine>& lines, const std::vector<std::string>& keys) {
  // NOLINTNEXTLINE(modernize-loop-convert): clang++ 14 does not take the views of the standard library of g++ 12.
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
    const bool descending = key->starts_with('-');
    const Column& column = *FindColumn(descending ? key->substr(1) : *key);
    std::stable_sort(lines.begin(), lines.end(), [&](const ProfileLine& a, const ProfileLine& b) {
      const int order = CompareNaturally(column.text(a), column.text(b));
      return descending ? order > 0 : order < 0;
    });
  }
}

void PrintTable(const std::vector<ProfileLine>& lines, const std::vector<std::string>& columns) {
  std::vector<Table::Column> titles;
  for (const std::string& name : columns) titles.push_back({name});
  Table table(std::move(titles));
  for (const ProfileLine& line : lines) {
    std::vector<std::string> cells;
    for (const std::string& name : columns) {
      std::string text = FindColumn(name)->text(line);
      cells.push_back(text.empty() ? "-" : std::move(text));
    }
    table.Add(std::move(cells));
  }
  if (!table.IsEmpty()) table.Print();
}

void PrintCsv(const std::vector<ProfileLine>& lines, const std::vector<std::string>& columns) {
  PrintLine(fmt::format("{}", fmt::join(columns, ",")));
  for (const ProfileLine& line : lines) {
    std::vector<std::string> fields;
    for (const std::string& name : columns) fields.push_back(CsvField(FindColumn(name)->text(line)));
    PrintLine(fmt::format("{}", fmt::join(fields, ",")));
  }
}

int Run(const ListOptions& options) {
  CheckColumns("--columns", options.columns, false);
  CheckColumns("--sort", options.sort, true);
  std::optional<std::int64_t> before;
  std::optional<std::int64_t> after;
  if (!options.olderThan.empty()) before = MomentOf("--older-than", options.olderThan);
  if (!options.newerThan.empty()) after = MomentOf("--newer-than", options.newerThan);

  int status = kSuccess;
  const auto fail = [&](const std::string& file, const std::string& why) {
    PrintErrorOf(file, why);
    status = kFailure;
  };
  std::vector<ProfileLine> lines;
  for (ProfileLine& line : ListProfiles(options.paths, options.recursive, options.jobs, fail)) {
    if (!line.failure.empty()) {
      fail(line.file, line.failure);
    } else if (IsWanted(line, options, before, after)) {
      lines.push_back(std::move(line));
    }
  }
  Sort(lines, options.sort);
  if (options.json) {
    for (const ProfileLine& line : lines) PrintJsonLine(ToJson(line));
  } else if (options.csv) {
    PrintCsv(lines, options.columns);
  } else {
    PrintTable(lines, options.columns);
  }
  return status;
}

}  // namespace

void AddListCommand(CommandLine& line) {
  Command command = line.AddCommand("list", "List profiles, one a line, from their headers alone");
  const auto options = std::make_shared<ListOptions>();
  command.AddFiles("PATH", options->paths, "Profiles, and folders of profiles").Required();
  command.AddFlag("-r,--recursive", options->recursive, "Look into the folders below, too");
  command.Add("--columns", &options->columns, "What to show, joined by commas")
      .Separated()
      .Type("COLUMN,COLUMN...")
      .Default(fmt::format("{}", fmt::join(kDefaultColumns, ",")));
  command.Add("--sort", &options->sort, "Columns to sort by, joined by commas; downwards behind a minus sign")
      .Separated()
      .Type("[-]COLUMN,...");
  for (const Column& column : Columns()) {
    command
        .Add(std::string("--") + column.name, &options->patterns[column.name],
             fmt::format("Only profiles whose {} fits; * and ? are wildcards", column.description))
        .Type("PATTERN");
  }
  command.Add("--older-than", &options->olderThan, "Only profiles updated before then, such as 90d or 2024-05-31")
      .Type("AGE");
  command.Add("--newer-than", &options->newerThan, "Only profiles updated since then").Type("AGE");
  const Option csv = command.AddFlag("--csv", options->csv, "Write comma-separated values");
  command.AddFlag("--json", options->json, "Write one JSON object a line").Excludes(csv);
  command.Add("-j,--jobs", &options->jobs, "Files to read at the same time; without it one for each processor")
      .Between(1, 256)
      .Type("N");
  command.Example("nvxprofile list -r --media 'glossy*' --resolution 720x1440 --older-than 90d profiles");
  command.Action([options] {
    if (options->columns.empty()) options->columns = kDefaultColumns;
    return Run(*options);
  });
}

}  // namespace nvx::tool
