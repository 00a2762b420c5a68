#include "command.h"
#include "console.h"
#include "files.h"
#include "interruption.h"
#include "manual.h"
#include "terminal.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

// What did not reach standard output is an error, whatever the command thinks.
int Finish(int status) {
  try {
    FinishStandardOutput();
    return status;
  } catch (const std::exception& error) {
    PrintError(error.what());
    return status == kUsage ? kUsage : kFailure;
  }
}

int Run(const std::vector<std::string>& arguments) {
  CommandLine line("Reads, converts and writes device profiles of inkjet printers.", "nvxprofile");
  line.SetVersion("nvxprofile " NVXPROFILE_VERSION);
  using AddCommand = void(CommandLine&);
  for (AddCommand* const add : {AddListCommand,
                                AddInfoCommand,
                                AddGetCommand,
                                AddSetCommand,
                                AddCopyCommand,
                                AddCurvesCommand,
                                AddMediaCommand,
                                AddLutCommand,
                                AddMasksCommand,
                                AddLampCommand,
                                AddSpecialCommand,
                                AddHistoryCommand,
                                AddExtractCommand,
                                AddConvertCommand,
                                AddImportHistoryCommand,
                                AddRemoveCalibrationCommand,
                                AddRenameCalibrationCommand,
                                AddCalibrateCommand,
                                AddApplyCalCommand,
                                AddAdjustCommand,
                                AddDumpCommand,
                                AddBuildCommand,
                                AddDiffCommand,
                                AddValidateCommand,
                                AddReportCommand,
                                AddCompletionCommand}) {
    add(line);
  }
  // For the build, which installs the page beside the tool.
  line.AddHiddenFlag("--man-page", [&] { WriteStandardOutput(ManualPage(line.Declared())); });
  return Finish(line.Run(arguments));
}

}  // namespace
}  // namespace nvx::tool

int main(int argc, char** argv) {
  const nvx::tool::Console console;
  nvx::tool::CleanUpWhenInterrupted();
  try {
    return nvx::tool::Run(nvx::tool::Arguments(argc, argv));
  } catch (const std::exception& error) {
    nvx::tool::PrintError(error.what());
    return nvx::tool::kUsage;
  }
}
