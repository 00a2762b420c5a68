// The report as one HTML file: everything that it needs stands in it, and its Content-Security-Policy forbids the rest.
#pragma once

#include "payload.h"
#include "report/profile_parts.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

// Bytes that a page keeps below, however many profiles it shows.
inline constexpr std::size_t kMostPageBytes = 15'000'000;

// False if the tool was built without the charting library.
bool CanMakePages();

class Page {
 public:
  // For a page on so many profiles. With `compare` it opens with the first two side by side.
  Page(std::size_t profiles, bool compare) : expected_(profiles), compare_(compare) {}

  // A profile with what the index says of it. Each may fill an equal share of the bytes that are left; the parts that
  // do not fit are named in the page instead.
  void Add(Json indexLine, const std::vector<ProfilePart>& parts);
  // A file that does not load.
  void AddFailure(const std::string& path, const std::string& message);

  std::string Finish() const;

 private:
  std::size_t ShareOfNext() const;

  std::size_t expected_;
  bool compare_;
  std::size_t used_ = 0;  // bytes of the profiles so far
  std::vector<Json> index_;
  std::vector<std::string> profiles_;  // JSON, escaped
};

}  // namespace nvx::tool
