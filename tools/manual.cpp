#include "manual.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

namespace nvx::tool {
namespace {

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_name().empty(); });
}

// Options that stand in --help; those without a group are hidden there.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
}

std::string Escape(std::string_view text) {
  std::string roff;
  for (const char c : text) {
    if (c == '\\' || c == '-') roff += '\\';
    roff += c;
  }
  // A point or quote at the start of a line would be a request.
  return !roff.empty() && (roff.front() == '.' || roff.front() == '\'') ? "\\&" + roff : roff;
}

std::string NamesOf(const CLI::Option& option) {
  std::string names = option.get_name(false, true);
  const std::string type = option.get_type_name();
  if (option.nonpositional() && option.get_expected_max() != 0 && !type.empty()) names += " " + type;
  return names;
}

std::string OptionLines(const CLI::App& app) {
  std::string lines;
  for (const CLI::Option* const option : OptionsOf(app)) {
    lines += fmt::format(".TP\n.B {}\n{}\n", Escape(NamesOf(*option)), Escape(option->get_description()));
  }
  return lines;
}

std::string Synopsis(const CLI::App& command) {
  std::string line = fmt::format(".B nvxprofile {}\n", Escape(command.get_name()));
  for (const CLI::Option* const option : OptionsOf(command)) {
    if (option->get_name() == "--help") continue;
    const std::string names = Escape(NamesOf(*option));
    line += option->get_required() ? fmt::format(".I {}\n", names) : fmt::format(".RI [ {} ]\n", names);
  }
  return line;
}

std::string LongNamesOf(const CLI::App& app) {
  std::string names;
  for (const CLI::Option* const option : OptionsOf(app)) {
    for (const std::string& name : option->get_lnames()) names += " --" + name;
  }
  return names;
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::string page = ".TH NVXPROFILE 1 \"\" \"nvxprofile " NVXPROFILE_VERSION "\" \"User Commands\"\n";
  page += fmt::format(".SH NAME\nnvxprofile \\- {}\n", Escape(app.get_description()));
  page += ".SH SYNOPSIS\n.B nvxprofile\n.I COMMAND\n.RI [ ARGUMENTS ]\n";
  page += ".SH OPTIONS\n" + OptionLines(app);
  page += ".SH COMMANDS\n";
  for (const CLI::App* const command : CommandsOf(app)) {
    page += fmt::format(".SS {}\n{}.PP\n{}.\n{}", Escape(command->get_name()), Synopsis(*command),
                        Escape(command->get_description()), OptionLines(*command));
  }
  page +=
      ".SH EXIT STATUS\n.TP\n.B 0\nall went well\n.TP\n.B 1\na file could not be loaded or written, or files differ; "
      "the reason stands on standard error\n.TP\n.B 2\nwrong usage\n";
  page +=
      ".SH ENVIRONMENT\n"
      ".TP\n.B LC_ALL, LC_MESSAGES, LANG\nlanguage, by which media names are chosen\n"
      ".TP\n.B NVXPROFILE_CODEPAGE\nnumber of the code page of narrow text, in place of the language's\n"
      ".TP\n.B NVXPROFILE_PROFILE_DIR\nfolder of the conversion table of text\\-headed profiles\n"
      ".TP\n.B SOURCE_DATE_EPOCH\ntime that a save takes for the present, in seconds since 1970\n"
      ".TP\n.B NO_COLOR\nno colours on a terminal\n";
  return page;
}

std::string BashCompletion(const CLI::App& app) {
  std::string commands;
  std::string cases;
  for (const CLI::App* const command : CommandsOf(app)) {
    commands += (commands.empty() ? "" : " ") + command->get_name();
    cases += fmt::format("    {}) options='{}' ;;\n", command->get_name(), LongNamesOf(*command).substr(1));
  }
  return fmt::format(R"(# bash completion of nvxprofile
_nvxprofile() {{
  local word=${{COMP_WORDS[COMP_CWORD]}} options=
  if [ "$COMP_CWORD" -eq 1 ]; then
    COMPREPLY=($(compgen -W '{}{}' -- "$word"))
    return
  fi
  case ${{COMP_WORDS[1]}} in
{}  esac
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$word"))
  else
    COMPREPLY=($(compgen -f -- "$word"))
  fi
}}
complete -o filenames -F _nvxprofile nvxprofile
)",
                     commands, LongNamesOf(app), cases);
}

}  // namespace nvx::tool
