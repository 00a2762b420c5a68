// nvxprofile report: what profiles hold, as a page for a browser.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "progress.h"
#include "report/page.h"
#include "report/profile_parts.h"
#include "saving.h"
#include "terminal.h"

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct ReportOptions {
  std::vector<std::string> files;
  std::string output;
  bool compare = false;
};

bool AddProfile(const std::string& file, Page& page) {
  const InputFile input(file);
  CProfileAccess access;
  if (!LoadProfile(file, input, access)) {
    page.AddFailure(file, input.Failure().empty() ? WhyNotLoaded(input.Path()) : input.Failure());
    return false;
  }
  page.Add(IndexLine(file, access), PartsOf(access));
  return true;
}

int Run(const ReportOptions& options) {
  if (!CanMakePages()) {
    PrintError(
        "this tool was built without the charting library of its reports, d3 (Debian: node-d3); configure the build "
        "again where it is installed, or with -DNVXPROFILE_D3=FILE");
    return kFailure;
  }
  if (options.compare && options.files.size() != 2) {
    PrintError("--compare takes two profiles");
    return kUsage;
  }
  Page page(options.files.size(), options.compare);
  std::size_t loaded = 0;
  {
    const ProgressBar progress(options.files.size());
    for (std::size_t i = 0; i < options.files.size(); ++i) {
      loaded += AddProfile(options.files[i], page) ? 1 : 0;
      progress.Show(i + 1);
    }
  }
  if (loaded == 0) return kFailure;
  WriteText(options.output, page.Finish());
  return loaded == options.files.size() ? kSuccess : kFailure;
}

}  // namespace

void AddReportCommand(CommandLine& line) {
  Command command =
      line.AddCommand("report", "Show what profiles hold as a page for a browser, in one file that needs no network");
  const auto options = std::make_shared<ReportOptions>();
  command.AddFiles("FILE", options->files, "Profiles of any format").Required();
  command.Add("-o,--output", &options->output, "The page to write").Required().Type("HTML");
  command.AddFlag("--compare", options->compare, "Open with two profiles side by side and what they differ in");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
