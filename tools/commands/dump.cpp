// nvxprofile dump: a whole profile as text.
#include "command.h"
#include "document.h"
#include "loading.h"
#include "paths.h"
#include "terminal.h"

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace nvx::tool {

void AddDumpCommand(CLI::App& app, int& status) {
  struct Options {
    std::string file;
    std::string folder;
  };
  CLI::App* const command = app.add_subcommand("dump", "Write a whole profile as one JSON document");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->file, "A profile of any format")->required();
  command->add_option("--files", options->folder, "Write ICC profiles as files into this folder")
      ->type_name("DIR")
      ->check([](const std::string& folder) {
        std::error_code error;
        return std::filesystem::is_directory(PathOf(folder), error) ? std::string() : "is no folder: " + folder;
      });
  command->footer("Example: nvxprofile dump glossy.icc --files parts > glossy.json");
  command->callback([options, &status] {
    CProfileAccess access;
    status = kFailure;
    if (!LoadProfile(options->file, access)) return;
    try {
      PrintJson(ProfileToDocument(access, options->folder));
      status = kSuccess;
    } catch (const std::exception& error) {
      PrintError(error.what());
    }
  });
}

}  // namespace nvx::tool
