// nvxprofile get: single values of a profile.
#include "command.h"
#include "loading.h"
#include "profile_values.h"
#include "terminal.h"

#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct GetOptions {
  std::string file;
  std::vector<std::string> paths;
  bool json = false;
};

int Run(const GetOptions& options) {
  return StatusOf(options.file, [&] {
    ProfileValues values(options.file);
    std::vector<Json> found;
    for (const std::string& path : options.paths) found.push_back(values.Get(path));
    for (const Json& value : found) {
      if (value.is_string() && !options.json) {
        PrintLine(value.get<std::string>());
      } else {
        PrintJsonLine(value);
      }
    }
    return kSuccess;
  });
}

}  // namespace

void AddGetCommand(CommandLine& line) {
  Command command = line.AddCommand("get", "Tell single values of a profile");
  const auto options = std::make_shared<GetOptions>();
  command.Add("FILE", &options->file, "A profile of any format").Required();
  command
      .Add("PATH", &options->paths,
           "What is wanted: a JSON pointer into the document of a dump, or a short name such as media/heater/0, "
           "record/MediaName, linearization/ink/1/samples or calibration/3/name")
      .Required();
  command.AddFlag("--json", options->json, "Write texts as JSON, too");
  command.Example("nvxprofile get glossy.icc media/heater/0");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
