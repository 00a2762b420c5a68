#include "profile_list.h"

#include "clock.h"
#include "files.h"
#include "loading.h"
#include "paths.h"

#include <nvxprofile/profile_summary.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <ctime>
#include <filesystem>
#include <optional>
#include <thread>
#include <utility>

namespace nvx::tool {
namespace {

namespace fs = std::filesystem;

std::string DateOf(std::int64_t seconds) {
  if (seconds == 0) return {};
  const std::optional<std::tm> parts = LocalTime(seconds);
  if (!parts) return std::to_string(seconds);
  return fmt::format("{:04}-{:02}-{:02}", parts->tm_year + 1900, parts->tm_mon + 1, parts->tm_mday);
}

constexpr std::array<Column, 12> kColumns{{
    {"model", "model code", [](const ProfileLine& line) { return line.model; }},
    {"ink-set", "ink set", [](const ProfileLine& line) { return line.inkSet; }},
    {"resolution", "resolution, such as 720x1440,", [](const ProfileLine& line) { return line.resolution; }},
    {"media", "medium", [](const ProfileLine& line) { return line.media; }},
    {"media-code", "media code", [](const ProfileLine& line) { return line.mediaCode; }},
    {"version", "version", [](const ProfileLine& line) { return line.version; }},
    {"updated", "day of the last update", [](const ProfileLine& line) { return DateOf(line.updated); }},
    {"calibration", "newest calibration's name",
     [](const ProfileLine& line) { return line.newest.empty() ? std::string() : line.newest.front().name; }},
    {"calibrated", "day of the newest calibration",
     [](const ProfileLine& line) { return line.newest.empty() ? std::string() : DateOf(line.newest.front().time); }},
    {"calibrations", "number of calibrations",
     [](const ProfileLine& line) {
       return line.calibrations == 0 ? std::string() : std::to_string(line.calibrations);
     }},
    {"format", "kind of file", [](const ProfileLine& line) { return std::string(FormatName(line.format)); }},
    {"file", "path", [](const ProfileLine& line) { return line.file; }},
}};

std::int64_t SecondsOf(int year, int month, int day, int hour, int minute, int second, bool utc) {
  if (year == 0) return 0;
  std::tm parts{};
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_sec = second;
  parts.tm_isdst = -1;
  const std::time_t time = utc ? SecondsOfUtc(parts) : std::mktime(&parts);
  return time < 0 ? 0 : time;
}

std::int64_t UpdateOf(const ProfileSummary& summary, const _tagDeviceProfileInfo& info) {
  if (info.LayoutNumber == kBinaryView) return info.UpdateTimeValue;
  if (info.LayoutNumber == kTextView) {
    const SYSTEMTIME& time = info.CreateTime;
    return SecondsOf(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, false);
  }
  const std::uint16_t* const time = summary.directory.header.phDateTime;
  return SecondsOf(time[0], time[1], time[2], time[3], time[4], time[5], true);
}

std::string InkSetOf(const _tagDeviceProfileInfo& info) {
  if (info.LayoutNumber == kTextView) return WideToUtf8(AnsiToWide(info.Text.InkSet_Label));
  return fmt::format("{}/{}/{}/{}", info.InkMakerCode, info.InkTypeCode, info.ColorsetCode, info.InkVersion);
}

void Fill(ProfileLine& line, ProfileSummary& summary) {
  const _tagDeviceProfileInfo& info = *summary.headers.GetProfileInfo();
  line.format = summary.format;
  line.updated = UpdateOf(summary, info);
  if (info.LayoutNumber == kNoView) return;
  line.model =
      fmt::format("{}/{}/{}", WideToUtf8(info.ModelCode), WideToUtf8(info.ModelSubCode), WideToUtf8(info.InternalCode));
  line.inkSet = InkSetOf(info);
  line.resolution = fmt::format("{}x{}", info.ScanResolution, info.FeedResolution);
  line.media = WideToUtf8(info.MediaName);
  line.mediaCode = WideToUtf8(info.MediaCode);
  line.version = fmt::format("{}.{}", info.ProfileMajorVersion, info.ProfileMinorVersion);
  line.calibrations = summary.calibrationCount;
  if (const auto& newest = summary.newestCalibration) {
    line.newest = {{newest->code, WideToUtf8(newest->name), newest->value, newest->time}};
  }
}

ProfileLine LineOf(const std::string& path) {
  ProfileLine line;
  line.file = path;
  const InputFile input(path);
  line.failure = input.Failure();
  if (!line.failure.empty()) return line;
  ProfileSummary summary;
  Diagnosis diagnosis;
  if (SummarizeProfile(input.Path().c_str(), summary, &diagnosis)) {
    Fill(line, summary);
  } else {
    line.failure = FirstError(diagnosis, input.Path());
  }
  return line;
}

bool IsNamedLikeAProfile(const fs::path& path) {
  std::string extension = TextOf(path.extension());
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension == ".icc" || extension == ".icm" || extension == ".qpf" || extension == ".qct";
}

struct Candidate {
  std::string path;
  bool isNamed = false;    // by the user, and not found in a folder
  std::size_t origin = 0;  // position of the path that led to it
};

using TellFailure = std::function<void(const std::string&, const std::string&)>;

// The files of a folder by name, then those of the folders in it. A folder that cannot be read is told of, and no more.
void AddFilesOf(const std::string& folder, std::size_t origin, bool recursive, std::vector<Candidate>& candidates,
                const TellFailure& fail) {
  const FolderItems found = ItemsOf(folder);
  const auto pathOf = [&](const FolderItem& item) { return TextOf(PathOf(folder) / PathOf(item.name)); };
  if (!found.failure.empty()) fail(folder, found.failure);
  for (const FolderItem& item : found.items) {
    if (item.isFile) candidates.push_back({pathOf(item), false, origin});
  }
  if (!recursive) return;
  for (const FolderItem& item : found.items) {
    if (item.isFolder) AddFilesOf(pathOf(item), origin, recursive, candidates, fail);
  }
}

std::vector<ProfileLine> ReadAll(const std::vector<Candidate>& candidates, unsigned jobs) {
  std::vector<ProfileLine> lines(candidates.size());
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next++; i < candidates.size(); i = next++) {
      try {
        lines[i] = LineOf(candidates[i].path);
      } catch (const std::exception& error) {
        lines[i].file = candidates[i].path;
        lines[i].failure = error.what();
      }
    }
  };
  const std::size_t wanted = jobs != 0 ? jobs : std::max(1u, std::thread::hardware_concurrency());
  std::vector<std::jthread> threads;
  for (std::size_t i = 1; i < std::min(wanted, candidates.size()); ++i) threads.emplace_back(work);
  work();
  threads.clear();
  return lines;
}

unsigned char Lower(char c) { return static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(c))); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Takes the run of digits that the text starts with off it, without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
  std::size_t length = 0;
  while (length < text.size() && IsDigit(text[length])) ++length;
  std::string_view digits = text.substr(0, length);
  text.remove_prefix(length);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits;
}

}  // namespace

std::span<const Column> Columns() { return kColumns; }

const Column* FindColumn(std::string_view name) {
  const auto found = std::find_if(kColumns.begin(), kColumns.end(), [=](const Column& c) { return c.name == name; });
  return found != kColumns.end() ? &*found : nullptr;
}

std::vector<ProfileLine> ListProfiles(const std::vector<std::string>& paths, bool recursive, unsigned jobs,
                                      const TellFailure& fail) {
  std::vector<Candidate> candidates;
  std::vector<bool> isFolder(paths.size());
  for (std::size_t i = 0; i < paths.size(); ++i) {
    isFolder[i] = IsFolder(paths[i]);
    if (!isFolder[i]) {
      candidates.push_back({paths[i], true, i});
      continue;
    }
    AddFilesOf(paths[i], i, recursive, candidates, fail);
  }
  std::vector<ProfileLine> lines;
  std::vector<bool> hasProfiles(paths.size());
  std::vector<ProfileLine> all = ReadAll(candidates, jobs);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Candidate& candidate = candidates[i];
    if (!all[i].failure.empty() && !candidate.isNamed && !IsNamedLikeAProfile(candidate.path)) continue;
    hasProfiles[candidate.origin] = true;
    lines.push_back(std::move(all[i]));
  }
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (isFolder[i] && !hasProfiles[i])
      fail(paths[i], recursive ? "has no profiles, nor have the folders below"
                               : "has no profiles; -r looks into the folders below");
  }
  return lines;
}

Json ToJson(const ProfileLine& line) {
  const auto text = [](const std::string& value) { return value.empty() ? Json(nullptr) : Json(value); };
  Json json = {{"file", line.file},
               {"format", line.format},
               {"formatName", std::string(FormatName(line.format))},
               {"model", text(line.model)},
               {"inkSet", text(line.inkSet)},
               {"resolution", text(line.resolution)},
               {"media", text(line.media)},
               {"mediaCode", text(line.mediaCode)},
               {"version", text(line.version)},
               {"updateTime", line.updated != 0 ? Json(line.updated) : Json(nullptr)},
               {"calibrations", line.calibrations},
               {"newestCalibration", nullptr}};
  for (const CalibrationText& newest : line.newest) {
    json["newestCalibration"] = {
        {"code", newest.code}, {"name", newest.name}, {"value", newest.value}, {"time", newest.time}};
  }
  return json;
}

bool MatchesWildcards(std::string_view text, std::string_view pattern) {
  const auto next = [](std::string_view value, std::size_t i) {
    do ++i;
    while (i < value.size() && (static_cast<unsigned char>(value[i]) & 0xC0) == 0x80);
    return i;
  };
  std::size_t t = 0;
  std::size_t p = 0;
  // Where to go on if what follows the last star does not fit.
  std::size_t star = std::string_view::npos;
  std::size_t behindStar = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      behindStar = t;
    } else if (p < pattern.size() && pattern[p] == '?') {
      t = next(text, t);
      ++p;
    } else if (p < pattern.size() && Lower(pattern[p]) == Lower(text[t])) {
      ++t;
      ++p;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      t = behindStar = next(text, behindStar);
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

int CompareNaturally(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    int order = 0;
    if (IsDigit(a.front()) && IsDigit(b.front())) {
      const std::string_view first = TakeNumber(a);
      const std::string_view second = TakeNumber(b);
      order = first.size() != second.size() ? (first.size() < second.size() ? -1 : 1) : first.compare(second);
    } else {
      order = Lower(a.front()) - Lower(b.front());
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
    if (order != 0) return order;
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

}  // namespace nvx::tool
