// nvxprofile validate: why profiles do not load, and what is suspicious in those that do.
#include "command.h"
#include "files.h"
#include "loading.h"
#include "semantics.h"
#include "terminal.h"

#include <nvxprofile/diagnosis.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace nvx::tool {
namespace {

struct ValidateOptions {
  std::vector<std::string> files;
  bool semantic = false;
  bool json = false;
  bool jsonLines = false;
};

// What is known of one file.
struct Report {
  std::string file;
  bool loads = false;
  std::vector<Finding> findings;
  std::vector<Finding> semantic;  // no bytes are at fault in these
};

const char* SeverityName(Severity severity) { return severity == Severity::kError ? "error" : "warning"; }

bool HasErrors(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.severity == Severity::kError; });
}

bool IsUnsound(const Report& report) {
  return !report.loads || HasErrors(report.findings) || HasErrors(report.semantic);
}

std::string VerdictOf(const Report& report) {
  if (!report.loads) return Styled(Style::kBad, "does not load");
  if (HasErrors(report.findings)) return Styled(Style::kWarning, "loads, with faults");
  if (HasErrors(report.semantic)) return Styled(Style::kWarning, "loads, and prints wrong");
  if (report.findings.empty() && report.semantic.empty()) return Styled(Style::kGood, "sound");
  return Styled(Style::kWarning, "loads, with oddities");
}

void Print(const Report& report) {
  PrintLine(fmt::format("{}: {}", report.file, VerdictOf(report)));
  Table table({{"severity"}, {"offset", Table::Align::kRight}, {"place"}, {"rule"}});
  for (const Finding& finding : report.findings) {
    table.Add({SeverityName(finding.severity), std::to_string(finding.offset), finding.place, finding.rule});
  }
  for (const Finding& finding : report.semantic) {
    table.Add({SeverityName(finding.severity), "", finding.place, finding.rule});
  }
  if (!table.IsEmpty()) table.Print(2);
}

Json ToJson(const Report& report) {
  Json findings = Json::array();
  for (const Finding& finding : report.findings) {
    findings.push_back({{"severity", SeverityName(finding.severity)},
                        {"offset", finding.offset},
                        {"place", finding.place},
                        {"rule", finding.rule}});
  }
  for (const Finding& finding : report.semantic) {
    findings.push_back(
        {{"severity", SeverityName(finding.severity)}, {"place", finding.place}, {"rule", finding.rule}});
  }
  return {
      {"file", report.file}, {"loads", report.loads}, {"sound", !IsUnsound(report)}, {"findings", std::move(findings)}};
}

Report Examine(const std::string& file, const std::u16string& path, bool semantic) {
  Report report{file, false, {}, {}};
  Diagnosis diagnosis;
  report.loads = DiagnoseProfile(path.c_str(), diagnosis);
  report.findings = diagnosis.Findings();
  CProfileAccess access;
  CError error;
  if (semantic && report.loads && access.Init(path.c_str(), &error)) report.semantic = FindSemanticFaults(access);
  return report;
}

int Run(const ValidateOptions& options) {
  int status = kSuccess;
  JsonOfFiles documents(options.files.size());
  for (const std::string& file : options.files) {
    const InputFile input(file);
    if (!input.Failure().empty()) {
      PrintErrorOf(file, input.Failure());
      status = kFailure;
      continue;
    }
    const Report report = Examine(file, input.Path(), options.semantic);
    if (IsUnsound(report) && status == kSuccess) status = kUnsound;
    if (options.jsonLines) {
      PrintJsonLine(ToJson(report));
    } else if (options.json) {
      documents.Print(ToJson(report));
    } else {
      Print(report);
    }
  }
  if (options.json) documents.End();
  return status;
}

}  // namespace

void AddValidateCommand(CommandLine& line) {
  Command command = line.AddCommand("validate", "Tell why profiles do not load, or what is suspicious in them");
  const auto options = std::make_shared<ValidateOptions>();
  command.AddFiles("FILE", options->files, "Profiles of any format").Required();
  command.AddFlag("--semantic", options->semantic,
                  "Look as well for what loads and yet prints wrong: merges that saturate, curves that fall, inks "
                  "without a curve, a table beyond the ink limits");
  const Option json = command.AddFlag("--json", options->json, "Write one JSON document");
  command.AddFlag("--json-lines", options->jsonLines, "Write one JSON object a line for each file").Excludes(json);
  command.Example("nvxprofile validate --semantic glossy.icc");
  command.Action([options] { return Run(*options); });
}

}  // namespace nvx::tool
