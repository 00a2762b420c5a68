// nvxprofile set: single values of a profile, changed where the file stores them.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "profile_values.h"
#include "terminal.h"
#include "value_changes.h"

#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct SetOptions {
  std::string file;
  std::vector<std::string> assignments;
  std::string output;
  bool dryRun = false;
};

int Run(const SetOptions& options) {
  const std::string output = options.output.empty() ? options.file : options.output;
  return StatusOf(options.file, [&] {
    ProfileValues values(options.file);
    Assign(values, options.assignments);
    const std::vector<std::uint8_t> image = values.Image();
    if (options.dryRun) {
      PrintChanges(values);
    } else if (!values.Changes().empty() || output != options.file) {
      WriteOutput(output, image);
    }
    return kSuccess;
  });
}

}  // namespace

void AddSetCommand(CommandLine& line) {
  Command command = line.AddCommand("set", "Change single values of a profile and leave every other byte as it is");
  const auto options = std::make_shared<SetOptions>();
  command.Add("FILE", &options->file, "A profile; it is replaced all at once unless -o names another file").Required();
  command
      .Add("PATH=VALUE", &options->assignments,
           "The values, named as in get: a number, true or false, a text, or JSON for a whole list")
      .Required();
  command.Add("-o,--output", &options->output, "Write the changed profile to this file").Type("FILE");
  command.AddFlag("--dry-run", options->dryRun, "Write nothing; show what would change");
  command.Example("nvxprofile set glossy.icc media/heater/0=45 --dry-run");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
