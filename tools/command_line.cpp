#include "command_line.h"

#include "command.h"
#include "files.h"
#include "system_files.h"
#include "terminal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <sstream>
#include <string_view>
#include <utility>

namespace nvx::tool {
namespace {

// Characters to insert, to remove or to replace until one word is the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : a) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (letter != b[j] ? 1 : 0);
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
                         : fmt::format(R"(there is no command "{}"; did you mean "{}"?)", word, nearest);
}

}  // namespace

Option& Option::Required() {
  option_->required();
  return *this;
}

Option& Option::Repeatable() {
  option_->expected(1)->take_all();
  return *this;
}

Option& Option::Separated() {
  option_->delimiter(',');
  return *this;
}

Option& Option::Count(int values) {
  option_->expected(values);
  return *this;
}

Option& Option::Type(const std::string& name) {
  option_->type_name(name);
  return *this;
}

Option& Option::Default(const std::string& text) {
  option_->default_str(text);
  return *this;
}

Option& Option::Between(int least, int greatest) {
  option_->check(CLI::Range(least, greatest));
  return *this;
}

Option& Option::OneOf(const std::vector<std::string>& words) {
  option_->check(CLI::IsMember(words).description(""));
  return Type(fmt::format("{}", fmt::join(words, "|")));
}

Option& Option::ExistingFolder() {
  option_->check(
      [](const std::string& folder) { return IsFolder(folder) ? std::string() : "is no folder: " + folder; });
  return *this;
}

Option& Option::Check(std::function<std::string(const std::string&)> why) {
  option_->check(std::move(why));
  return *this;
}

Option& Option::Needs(const Option& other) {
  option_->needs(other.option_);
  return *this;
}

Option& Option::Excludes(const Option& other) {
  option_->excludes(other.option_);
  return *this;
}

Option Command::Add(const std::string& names, OptionTarget target, const std::string& description) {
  return Option(std::visit([&](auto* value) { return app_->add_option(names, *value, description); }, target));
}

Option Command::AddFiles(const std::string& name, std::vector<std::string>& files, const std::string& description) {
  const auto take = [&files](const std::vector<std::string>& arguments) {
    files.clear();
    for (const std::string& argument : arguments) {
      const std::vector<std::string> named = FilesNamedBy(argument);
      files.insert(files.end(), named.begin(), named.end());
    }
  };
  return Option(app_->add_option_function<std::vector<std::string>>(name, take, description));
}

Option Command::AddFlag(const std::string& names, bool& flag, const std::string& description) {
  return Option(app_->add_flag(names, flag, description));
}

Option Command::AddFlag(const std::string& names, std::function<void()> action, const std::string& description) {
  return Option(app_->add_flag_callback(names, std::move(action), description));
}

Option Command::AddNumberedWords(const std::string& names, const std::function<void(const int&)>& take,
                                 const std::map<std::string, int>& words, const std::string& description) {
  std::vector<std::string> list;
  for (const auto& [word, number] : words) list.push_back(word);
  Option option(app_->add_option_function<int>(names, take, description)
                    ->transform(CLI::CheckedTransformer(words).description("")));
  return option.Type(fmt::format("{}", fmt::join(list, "|")));
}

Command Command::AddGroup(const std::string& name, std::size_t least, std::size_t greatest) {
  CLI::Option_group* const group = app_->add_option_group(name);
  group->require_option(least, greatest);
  return {group, status_};
}

void Command::Example(const std::string& commandLine) { app_->footer("Example: " + commandLine); }

void Command::Action(std::function<int()> action) {
  app_->callback([status = status_, action = std::move(action)] { *status = action(); });
}

CommandLine::CommandLine(const std::string& description, const std::string& name)
    : app_(std::make_unique<CLI::App>(description, name)) {
  app_->require_subcommand(1);
  // On Windows the parser would take a path or a place that starts with a slash for an option.
  app_->allow_windows_style_options(false);
}

CommandLine::~CommandLine() = default;

Command CommandLine::AddCommand(const std::string& name, const std::string& description) {
  return {app_->add_subcommand(name, description), &status_};
}

void CommandLine::SetVersion(const std::string& text) { app_->set_version_flag("--version", text); }

void CommandLine::AddHiddenFlag(const std::string& name, std::function<void()> action) {
  const auto only = [action = std::move(action)] {
    action();
    throw CLI::Success();
  };
  app_->add_flag_callback(name, only)->group("");
}

int CommandLine::Run(std::vector<std::string> arguments) {
  if (const std::string why = WhyNoCommand(*app_, arguments.size() > 1 ? arguments[1] : ""); !why.empty()) {
    PrintError(why);
    return kUsage;
  }
  const auto complain = [&](const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream complaint;
    const bool isHelp = app_->exit(error, out, complaint) == 0;
    WriteStandardOutput(out.str());
    std::fputs(complaint.str().c_str(), stderr);
    return isHelp ? kSuccess : kUsage;
  };
  try {
    // The parser takes them from the back, without the program's name.
    std::reverse(arguments.begin(), arguments.end());
    if (!arguments.empty()) arguments.pop_back();
    app_->parse(std::move(arguments));
    return status_;
  } catch (const CLI::ParseError& error) {
    return complain(error);
  } catch (const UsageError& error) {
    return complain(CLI::ValidationError(error.what()));
  } catch (const std::exception& error) {
    PrintError(error.what());
    return kFailure;
  }
}

}  // namespace nvx::tool
