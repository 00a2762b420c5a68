// nvxprofile validate: why profiles do not load, and what is suspicious in those that do.
#include "command.h"
#include "loading.h"
#include "terminal.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/text_conversion.h>

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct Options {
  std::vector<std::string> files;
  bool json = false;
};

const char* NameOf(Severity severity) { return severity == Severity::kError ? "error" : "warning"; }

void Print(const std::string& file, bool loads, const Diagnosis& diagnosis) {
  const std::string verdict = !loads                         ? Styled(Style::kBad, "does not load")
                              : diagnosis.Findings().empty() ? Styled(Style::kGood, "sound")
                              : diagnosis.HasErrors()        ? Styled(Style::kWarning, "loads, with faults")
                                                             : Styled(Style::kWarning, "loads, with oddities");
  PrintLine(fmt::format("{}: {}", file, verdict));
  if (diagnosis.Findings().empty()) return;
  Table table({{"severity"}, {"offset", Table::Align::kRight}, {"place"}, {"rule"}});
  for (const Finding& finding : diagnosis.Findings()) {
    table.Add({NameOf(finding.severity), std::to_string(finding.offset), finding.place, finding.rule});
  }
  table.Print(2);
}

Json ToJson(const std::string& file, bool loads, const Diagnosis& diagnosis) {
  Json findings = Json::array();
  for (const Finding& finding : diagnosis.Findings()) {
    findings.push_back({{"severity", NameOf(finding.severity)},
                        {"offset", finding.offset},
                        {"place", finding.place},
                        {"rule", finding.rule}});
  }
  return {{"file", file}, {"loads", loads}, {"findings", std::move(findings)}};
}

int Run(const Options& options) {
  int status = kSuccess;
  for (const std::string& file : options.files) {
    Diagnosis diagnosis;
    const bool loads = DiagnoseProfile(Utf8ToWide(file).c_str(), diagnosis);
    if (!loads || diagnosis.HasErrors()) status = kFailure;
    if (options.json) {
      PrintJson(ToJson(file, loads, diagnosis));
    } else {
      Print(file, loads, diagnosis);
    }
  }
  return status;
}

}  // namespace

void AddValidateCommand(CLI::App& app, int& status) {
  CLI::App* const command =
      app.add_subcommand("validate", "Tell why profiles do not load, or what is suspicious in them");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->files, "Profiles of any format")->required();
  command->add_flag("--json", options->json, "Write one JSON document for each file");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
