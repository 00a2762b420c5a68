// What the command line declares, in its order: the commands, and of each the options that --help shows, those of
// option groups among them.
#pragma once

#include <CLI/CLI.hpp>

#include <vector>

namespace nvx::tool {

inline std::vector<const CLI::App*> DeclaredCommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_name().empty(); });
}

inline std::vector<const CLI::Option*> DeclaredOptions(const CLI::App& app) {
  // Those without a group are hidden.
  std::vector<const CLI::Option*> options =
      app.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
  for (const CLI::App* const group :
       app.get_subcommands([](const CLI::App* part) { return part->get_name().empty(); })) {
    for (const CLI::Option* const option : DeclaredOptions(*group)) {
      // A group has a --help of its own.
      if (option->get_name() != "--help") options.push_back(option);
    }
  }
  return options;
}

}  // namespace nvx::tool
