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

struct Options {
  std::string document;
  std::string output;
};

// The name by which the profile describes itself.
std::string NameOf(const std::string& output) {
  const std::string name = FileNameOf(output);
  return output == kStandardStream || name.empty() ? "profile" : name;
}

int Run(const Options& options) {
  const bool isStandard = options.document == kStandardStream;
  const std::string folder = isStandard ? "" : TextOf(PathOf(options.document).parent_path());
  try {
    const Json document = ParseDocument(ReadInput(options.document));
    WriteOutput(options.output, BuildProfile(document, folder, NameOf(options.output)));
    return kSuccess;
  } catch (const DocumentError& error) {
    PrintErrorOf(options.document, fmt::format("{}: {}", error.Place().empty() ? "/" : error.Place(), error.what()));
  } catch (const std::runtime_error& error) {
    PrintError(error.what());
  }
  return kFailure;
}

}  // namespace

void AddBuildCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("build", "Build a profile from a JSON document");
  const auto options = std::make_shared<Options>();
  command->add_option("DOCUMENT", options->document, "A document as dump writes it; - for standard input")->required();
  command->add_option("-o,--output", options->output, "The profile to write; - for standard output")
      ->required()
      ->type_name("FILE");
  command->footer("Example: nvxprofile build glossy.json -o glossy.icc");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
