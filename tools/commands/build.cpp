// nvxprofile build: a profile from its text.
#include "command.h"
#include "document.h"
#include "terminal.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace nvx::tool {
namespace {

struct Options {
  std::string document;
  std::string output;
};

Json ReadDocument(const std::string& path) {
  if (path == "-") return Json::parse(std::cin);
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path + ": cannot be opened");
  return Json::parse(file);
}

int Run(const Options& options) {
  try {
    const std::string folder = std::filesystem::path(options.document).parent_path().string();
    BuildProfile(ReadDocument(options.document), folder, options.output);
    return kSuccess;
  } catch (const DocumentError& error) {
    PrintError(fmt::format("{}: {}: {}", options.document, error.Place().empty() ? "/" : error.Place(), error.what()));
  } catch (const Json::exception& error) {
    PrintError(fmt::format("{}: {}", options.document, error.what()));
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
  command->add_option("-o,--output", options->output, "The profile to write")->required()->type_name("FILE");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
