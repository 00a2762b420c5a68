// Completion for bash, zsh and fish out of the declared commands and options.
#include "declared_options.h"
#include "manual.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

namespace nvx::tool {
namespace {

enum class Kind { kNone, kFile, kFolder, kChoice, kAnything };

// What the values of an option are.
struct Values {
  Kind kind = Kind::kAnything;
  std::vector<std::string> choice;
};

bool IsWord(std::string_view text, std::string_view word) { return text.find(word) != text.npos; }

Values ValuesOf(const CLI::Option& option) {
  if (option.get_expected_max() == 0) return {Kind::kNone, {}};
  std::string type = option.get_type_name();
  // The words of a choice, a|b|c; what a user puts in place of a name in capitals is none.
  if (IsWord(type, "|") && std::islower(static_cast<unsigned char>(type.front())) != 0) {
    return {Kind::kChoice, CLI::detail::split(type, '|')};
  }
  if (!option.nonpositional()) type = option.get_name(true, false) + " " + type;
  if (type == "DIR") return {Kind::kFolder, {}};
  for (const char* const word : {"FILE", "OUT", "PATH", "DOCUMENT", "OLD", "DIR", "FROM", "INTO"}) {
    if (IsWord(type, word)) return {Kind::kFile, {}};
  }
  // The two profiles of a comparison.
  return {type.starts_with("A ") || type.starts_with("B ") ? Kind::kFile : Kind::kAnything, {}};
}

std::string NamesOf(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) names += (names.empty() ? "-" : " -") + name;
  for (const std::string& name : option.get_lnames()) names += (names.empty() ? "--" : " --") + name;
  return names;
}

std::string OptionNamesOf(const CLI::App& command) {
  std::string names;
  for (const CLI::Option* const option : DeclaredOptions(command)) {
    const std::string own = NamesOf(*option);
    if (!own.empty()) names += (names.empty() ? "" : " ") + own;
  }
  return names;
}

std::string CommandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* const command : DeclaredCommands(app)) names += (names.empty() ? "" : " ") + command->get_name();
  return names;
}

// The words that the positional arguments of a command may be; empty if they are files.
std::vector<std::string> PositionalChoice(const CLI::App& command) {
  for (const CLI::Option* const option : DeclaredOptions(command)) {
    if (option->nonpositional()) continue;
    const Values values = ValuesOf(*option);
    if (values.kind == Kind::kChoice) return values.choice;
  }
  return {};
}

std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// A bash action that completes a value into COMPREPLY.
std::string BashAction(const Values& values) {
  switch (values.kind) {
    case Kind::kChoice:
      return fmt::format("COMPREPLY=($(compgen -W '{}' -- \"$word\"))", fmt::join(values.choice, " "));
    case Kind::kFolder:
      return "compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- \"$word\")";
    case Kind::kFile:
      return "compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- \"$word\")";
    default:
      return "COMPREPLY=()";
  }
}

std::string BashCommand(const CLI::App& command) {
  std::string text = fmt::format("    {})\n      options='{}'\n", command.get_name(), OptionNamesOf(command));
  std::string cases;
  for (const CLI::Option* const option : DeclaredOptions(command)) {
    std::string names = NamesOf(*option);
    const Values values = ValuesOf(*option);
    if (names.empty() || values.kind == Kind::kNone) continue;
    std::replace(names.begin(), names.end(), ' ', '|');
    cases += fmt::format("        {}) {}; return ;;\n", names, BashAction(values));
  }
  if (!cases.empty()) text += "      case $before in\n" + cases + "      esac\n";
  const std::vector<std::string> choice = PositionalChoice(command);
  if (!choice.empty()) text += fmt::format("      words='{}'\n", fmt::join(choice, " "));
  return text + "      ;;\n";
}

std::string ZshAction(const Values& values) {
  switch (values.kind) {
    case Kind::kChoice:
      return fmt::format("({})", fmt::join(values.choice, " "));
    case Kind::kFolder:
      return "_files -/";
    case Kind::kFile:
      return "_files";
    default:
      return " ";
  }
}

// Brackets and colons part what an argument of _arguments says.
std::string ZshEscaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string ZshOption(const CLI::Option& option) {
  const Values values = ValuesOf(option);
  std::string names = NamesOf(option);
  std::string lines;
  for (const std::string& name : CLI::detail::split(names, ' ')) {
    std::string argument = "*" + name + "[" + ZshEscaped(option.get_description()) + "]";
    const int count = std::max(1, option.get_items_expected_min());
    for (int i = 0; values.kind != Kind::kNone && i < count; ++i) {
      argument += fmt::format(":{}:{}", ZshEscaped(option.get_type_name()), ZshAction(values));
    }
    lines += " \\\n        " + Quoted(argument);
  }
  return lines;
}

std::string ZshCommand(const CLI::App& command) {
  std::string text = fmt::format("    {})\n      _arguments -S", command.get_name());
  for (const CLI::Option* const option : DeclaredOptions(command)) {
    if (option->nonpositional()) text += ZshOption(*option);
  }
  const std::vector<std::string> choice = PositionalChoice(command);
  const std::string action = choice.empty() ? "_files" : fmt::format("({})", fmt::join(choice, " "));
  return text + " \\\n        " + Quoted("*:argument:" + action) + "\n      ;;\n";
}

std::string FishOption(const std::string& command, const CLI::Option& option) {
  const Values values = ValuesOf(option);
  std::string line = fmt::format("complete -c nvxprofile -n '__fish_seen_subcommand_from {}'", command);
  for (const std::string& name : option.get_snames()) line += " -s " + name;
  for (const std::string& name : option.get_lnames()) line += " -l " + name;
  if (values.kind == Kind::kChoice) line += fmt::format(" -x -a '{}'", fmt::join(values.choice, " "));
  if (values.kind == Kind::kFolder) line += " -x -a '(__fish_complete_directories)'";
  if (values.kind == Kind::kFile) line += " -r -F";
  if (values.kind == Kind::kAnything) line += " -x";
  return line + " -d " + Quoted(option.get_description()) + "\n";
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::string cases;
  for (const CLI::App* const command : DeclaredCommands(app)) cases += BashCommand(*command);
  return fmt::format(R"(# bash completion of nvxprofile
_nvxprofile() {{
  local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}} options= words=
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    COMPREPLY=($(compgen -W '{} {}' -- "$word"))
    return
  fi
  case ${{COMP_WORDS[1]}} in
{}  esac
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$word"))
  elif [ -n "$words" ]; then
    COMPREPLY=($(compgen -W "$words" -- "$word"))
  else
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}}
complete -F _nvxprofile nvxprofile
)",
                     CommandNames(app), OptionNamesOf(app), cases);
}

std::string ZshCompletion(const CLI::App& app) {
  std::string commands;
  std::string cases;
  for (const CLI::App* const command : DeclaredCommands(app)) {
    commands += "    " + Quoted(command->get_name() + ":" + ZshEscaped(command->get_description())) + "\n";
    cases += ZshCommand(*command);
  }
  std::string options;
  for (const CLI::Option* const option : DeclaredOptions(app)) options += ZshOption(*option);
  return fmt::format(R"(#compdef nvxprofile
_nvxprofile() {{
  local -a commands=(
{}  )
  local context state line
  _arguments -C{} \
    '1: :->command' '*:: :->arguments' && return
  if [[ $state == command ]]; then
    _describe command commands
    return
  fi
  case $line[1] in
{}  esac
}}
if [ "$funcstack[1]" = _nvxprofile ]; then
  _nvxprofile "$@"
else
  compdef _nvxprofile nvxprofile
fi
)",
                     commands, options, cases);
}

std::string FishCompletion(const CLI::App& app) {
  std::string text = "# fish completion of nvxprofile\n";
  for (const CLI::App* const command : DeclaredCommands(app)) {
    text += fmt::format("complete -c nvxprofile -n __fish_use_subcommand -x -a {} -d {}\n", command->get_name(),
                        Quoted(command->get_description()));
    const std::vector<std::string> choice = PositionalChoice(*command);
    if (!choice.empty()) {
      text += fmt::format("complete -c nvxprofile -n '__fish_seen_subcommand_from {}' -x -a '{}'\n",
                          command->get_name(), fmt::join(choice, " "));
    }
    for (const CLI::Option* const option : DeclaredOptions(*command)) {
      if (option->nonpositional()) text += FishOption(command->get_name(), *option);
    }
  }
  return text;
}

}  // namespace nvx::tool
