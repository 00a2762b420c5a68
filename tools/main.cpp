#include "command.h"
#include "console.h"
#include "manual.h"
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

int main(int argc, char** argv) {
  using namespace nvx::tool;
  const Console console;
  std::vector<std::string> arguments = Arguments(argc, argv);
  CLI::App app("Reads, converts and writes device profiles of inkjet printers.", "nvxprofile");
  app.set_version_flag("--version", "nvxprofile " NVXPROFILE_VERSION);
  app.require_subcommand(1);
  int status = kSuccess;
  using AddCommand = void(CLI::App&, int&);
  for (AddCommand* const add :
       {AddInfoCommand, AddCurvesCommand, AddMediaCommand, AddLutCommand, AddMasksCommand, AddLampCommand,
        AddSpecialCommand, AddHistoryCommand, AddExtractCommand, AddConvertCommand, AddImportHistoryCommand,
        AddAdjustCommand, AddDumpCommand, AddBuildCommand, AddDiffCommand, AddValidateCommand}) {
    add(app, status);
  }
  // For the build, which installs both beside the tool.
  app.add_flag_callback("--man-page",
                        [&] {
                          std::fputs(ManualPage(app).c_str(), stdout);
                          throw CLI::Success();
                        })
      ->group("");
  app.add_flag_callback("--bash-completion",
                        [&] {
                          std::fputs(BashCompletion(app).c_str(), stdout);
                          throw CLI::Success();
                        })
      ->group("");
  try {
    // The parser takes them from the back, without the program's name.
    arguments.erase(arguments.begin());
    std::reverse(arguments.begin(), arguments.end());
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kSuccess : kUsage;
  } catch (const std::exception& error) {
    PrintError(error.what());
    return kFailure;
  }
  return status;
}
