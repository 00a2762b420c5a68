// Profiles as lines of a list, each read from its headers alone.
#pragma once

#include "payload.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

struct CalibrationText {
  std::uint32_t code = 0;
  std::string name;
  std::int32_t value = 0;
  std::int64_t time = 0;
};

// What the list knows of a profile; texts are empty where its format says nothing.
struct ProfileLine {
  std::string file;
  std::string failure;  // why it could not be read; all else is empty then
  int format = 0;
  std::string model;       // "1234/05/67"
  std::string inkSet;      // maker, type, colour set and version, or the label of a text-headed profile
  std::string resolution;  // "720x1440"
  std::string media;       // in the reader's language
  std::string mediaCode;
  std::string version;
  std::int64_t updated = 0;  // seconds since 1970; 0 for unknown
  std::uint32_t calibrations = 0;
  std::vector<CalibrationText> newest;  // one at most
};

struct Column {
  const char* name;
  const char* description;
  std::string (*text)(const ProfileLine& line);
};

std::span<const Column> Columns();
// Null for a name that is none.
const Column* FindColumn(std::string_view name);

// Reads the headers of files, and of the profiles of folders, on several threads (0 for one on each processor). The
// lines come in the order of the paths, those of a folder by name. A file of a folder that is no profile and is not
// named like one is passed over. fail(path, reason) is told of paths that are not there and of folders without
// profiles.
std::vector<ProfileLine> ListProfiles(const std::vector<std::string>& paths, bool recursive, unsigned jobs,
                                      const std::function<void(const std::string&, const std::string&)>& fail);

Json ToJson(const ProfileLine& line);

// A whole text fits a pattern in which * stands for any characters and ? for one. The case of ASCII letters counts for
// nothing.
bool MatchesWildcards(std::string_view text, std::string_view pattern);

// Below, above or 0, with runs of digits compared as numbers.
int CompareNaturally(std::string_view a, std::string_view b);

}  // namespace nvx::tool
