// nvxprofile diff: what two profiles differ in.
#include "command.h"
#include "comparison.h"
#include "loading.h"
#include "terminal.h"

#include <fmt/format.h>

#include <memory>
#include <string>

namespace nvx::tool {
namespace {

struct Options {
  std::string a;
  std::string b;
  bool json = false;
};

std::string ValueText(const Json& value) {
  return value.is_null() ? std::string() : value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void Print(const std::vector<Difference>& differences) {
  Table table({{"place"}, {""}, {"A"}, {"B"}, {"greatest", Table::Align::kRight}});
  for (const Difference& difference : differences) {
    table.Add({difference.place, difference.what, ValueText(difference.a), ValueText(difference.b),
               ValueText(difference.greatest)});
  }
  table.Print();
}

Json ToJson(const std::vector<Difference>& differences) {
  Json list = Json::array();
  for (const Difference& difference : differences) {
    Json item = {{"place", difference.place}, {"what", difference.what}};
    if (!difference.a.is_null()) item["a"] = difference.a;
    if (!difference.b.is_null()) item["b"] = difference.b;
    if (!difference.greatest.is_null()) item["greatest"] = difference.greatest;
    list.push_back(std::move(item));
  }
  return list;
}

int Run(const Options& options) {
  CProfileAccess a;
  CProfileAccess b;
  if (!LoadProfile(options.a, a) || !LoadProfile(options.b, b)) return kUsage;
  const std::vector<Difference> differences = Compare(a, b);
  if (options.json) {
    PrintJson({{"a", options.a}, {"b", options.b}, {"differences", ToJson(differences)}});
  } else if (!differences.empty()) {
    Print(differences);
  }
  return differences.empty() ? kSuccess : kFailure;
}

}  // namespace

void AddDiffCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand(
      "diff", "Tell what two profiles differ in; exit status 1 if they do, 2 if one cannot be loaded");
  const auto options = std::make_shared<Options>();
  command->add_option("A", options->a, "A profile")->required();
  command->add_option("B", options->b, "Another profile")->required();
  command->add_flag("--json", options->json, "Write one JSON document");
  command->callback([options, &status] { status = Run(*options); });
}

}  // namespace nvx::tool
