// nvxprofile report: what profiles hold, as a page for a browser.
#include "command.h"
#include "loading.h"
#include "progress.h"
#include "report/page.h"
#include "report/profile_parts.h"
#include "terminal.h"

#include <nvxprofile/icm_entry.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct Options {
  std::vector<std::string> files;
  std::string output;
  bool compare = false;
};

// Writes beside the target and replaces it at the end, as the library saves everything.
bool Write(const std::string& path, const std::string& text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) return false;
  CICMEntry carrier;
  std::memcpy(carrier.GetBuffer(static_cast<std::uint32_t>(text.size())), text.data(), text.size());
  std::uint32_t error = 0;
  return carrier.Save(PathToWide(path).c_str(), error);
}

bool AddProfile(const std::string& file, Page& page) {
  CProfileAccess access;
  CError error;
  if (!access.Init(PathToWide(file).c_str(), &error)) {
    PrintError(MessageOf(error));
    page.AddFailure(file, MessageOf(error));
    return false;
  }
  page.Add(IndexLine(file, access), PartsOf(access));
  return true;
}

int Run(const Options& options) {
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
  if (!Write(options.output, page.Finish())) {
    PrintError(fmt::format("{}: cannot be written", options.output));
    return kFailure;
  }
  return loaded == options.files.size() ? kSuccess : kFailure;
}

}  // namespace

void AddReportCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand(
      "report", "Show what profiles hold as a page for a browser, in one file that needs no network");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->files, "Profiles of any format")->required();
  command->add_option("-o,--output", options->output, "The page to write")->required()->type_name("HTML");
  command->add_flag("--compare", options->compare, "Open with two profiles side by side and what they differ in");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
