#include "command.h"
#include "console.h"
#include "files.h"
#include "manual.h"
#include "terminal.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nvx::tool {
namespace {

// Characters to insert, to remove or to replace until one word is the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] != b[j] ? 1 : 0);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// What to say of a first word that is no command; empty if it is one, or an option.
std::string WhyNoCommand(const CLI::App& app, std::string_view word) {
  if (word.empty() || word.starts_with('-')) return {};
  std::string nearest;
  std::size_t least = std::max<std::size_t>(2, word.size() / 3) + 1;
  for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
    const std::size_t distance = Distance(word, command->get_name());
    if (distance == 0) return {};
    if (distance < least) {
      least = distance;
      nearest = command->get_name();
    }
  }
  return nearest.empty() ? fmt::format("there is no command \"{}\"; --help lists them", word)
                         : fmt::format("there is no command \"{}\"; did you mean \"{}\"?", word, nearest);
}

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

int Run(std::vector<std::string> arguments) {
  CLI::App app("Reads, converts and writes device profiles of inkjet printers.", "nvxprofile");
  app.set_version_flag("--version", "nvxprofile " NVXPROFILE_VERSION);
  app.require_subcommand(1);
  int status = kSuccess;
  using AddCommand = void(CLI::App&, int&);
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
    add(app, status);
  }
  // For the build, which installs the page beside the tool.
  app.add_flag_callback("--man-page",
                        [&] {
                          WriteStandardOutput(ManualPage(app));
                          throw CLI::Success();
                        })
      ->group("");
  if (const std::string why = WhyNoCommand(app, arguments.size() > 1 ? arguments[1] : ""); !why.empty()) {
    PrintError(why);
    return kUsage;
  }
  try {
    // The parser takes them from the back, without the program's name.
    std::reverse(arguments.begin(), arguments.end());
    if (!arguments.empty()) arguments.pop_back();
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream complaint;
    status = app.exit(error, out, complaint) == 0 ? kSuccess : kUsage;
    WriteStandardOutput(out.str());
    std::fputs(complaint.str().c_str(), stderr);
  } catch (const std::exception& error) {
    PrintError(error.what());
    status = kFailure;
  }
  return Finish(status);
}

}  // namespace
}  // namespace nvx::tool

int main(int argc, char** argv) {
  const nvx::tool::Console console;
  try {
    return nvx::tool::Run(nvx::tool::Arguments(argc, argv));
  } catch (const std::exception& error) {
    nvx::tool::PrintError(error.what());
    return nvx::tool::kUsage;
  }
}
