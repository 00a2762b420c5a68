#include "value_changes.h"

#include "terminal.h"

#include <fmt/format.h>

namespace nvx::tool {
namespace {

// Lists of samples are long.
std::string Shortened(const Json& value) {
  constexpr std::size_t kMost = 60;
  std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text.size() <= kMost || value.is_string()) return text;
  return value.is_array() ? fmt::format("{} ... ({} items)", text.substr(0, kMost / 2), value.size())
                          : text.substr(0, kMost) + " ...";
}

}  // namespace

void Assign(ProfileValues& values, const std::vector<std::string>& assignments) {
  for (const std::string& assignment : assignments) {
    const std::size_t equals = assignment.find('=');
    if (equals == assignment.npos || equals == 0) throw DocumentError(assignment, "PATH=VALUE is expected");
    values.Set(assignment.substr(0, equals), assignment.substr(equals + 1));
  }
}

void PrintChanges(const ProfileValues& values) {
  if (values.Changes().empty()) {
    PrintLine("nothing changes");
    return;
  }
  Table table({{"place"}, {"is"}, {"becomes"}});
  for (const Change& change : values.Changes()) {
    table.Add({change.place, Shortened(change.before), Shortened(change.after)});
  }
  table.Print();
}

}  // namespace nvx::tool
