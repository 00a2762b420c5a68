// nvxprofile build: a profile from its text.
#include "command.h"
#include "document.h"
#include "files.h"
#include "loading.h"
#include "paths.h"
#include "terminal.h"

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct BuildOptions {
  std::string document;
  std::string output;
};

int Run(const BuildOptions& options) {
  const bool isStandard = options.document == kStandardStream;
  const std::string folder = isStandard ? "" : TextOf(PathOf(options.document).parent_path());
  try {
    const Json document = ParseDocument(ReadInput(options.document));
    WriteOutput(options.output, BuildProfile(document, folder, OwnNameOf(options.output)));
    return kSuccess;
  } catch (const DocumentError& error) {
    PrintErrorOf(options.document, fmt::format("{}: {}", error.Place().empty() ? "/" : error.Place(), error.what()));
  } catch (const std::runtime_error& error) {
    PrintError(error.what());
  }
  return kFailure;
}

}  // namespace

void AddBuildCommand(CommandLine& line) {
  Command command = line.AddCommand("build", "Build a profile from a JSON document");
  const auto options = std::make_shared<BuildOptions>();
  command.Add("DOCUMENT", &options->document, "A document as dump writes it; - for standard input").Required();
  command.Add("-o,--output", &options->output, "The profile to write; - for standard output").Required().Type("FILE");
  command.Example("nvxprofile build glossy.json -o glossy.icc");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
