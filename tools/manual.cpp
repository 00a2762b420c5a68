#include "manual.h"

#include "declared_options.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <string_view>
#include <vector>

namespace nvx::tool {
namespace {

std::string Escape(std::string_view text) {
  std::string roff;
  for (const char c : text) {
    if (c == '\\') {
      roff += "\\e";
      continue;
    }
    if (c == '-') roff += '\\';
    // Quotes part the arguments of a request.
    roff += c == '"' ? std::string("\\(dq") : std::string(1, c);
  }
  // A point or quote at the start of a line would be a request.
  return !roff.empty() && (roff.front() == '.' || roff.front() == '\'') ? "\\&" + roff : roff;
}

// "-o, --output FILE", as it stands before the description.
std::string NamesOf(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : CLI::detail::split(option.get_name(false, true), ',')) {
    names += (names.empty() ? "" : ", ") + name;
  }
  // What a check allows stands behind a colon.
  const std::string type = option.get_type_name().substr(0, option.get_type_name().find(':'));
  if (option.nonpositional() && option.get_expected_max() != 0 && !type.empty()) names += " " + type;
  return names;
}

std::string OptionLines(const CLI::App& app) {
  std::string lines;
  for (const CLI::Option* const option : DeclaredOptions(app)) {
    lines += fmt::format(".TP\n.B {}\n{}\n", Escape(NamesOf(*option)), Escape(option->get_description()));
  }
  return lines;
}

std::string Synopsis(const CLI::App& command) {
  std::string line = fmt::format(".B nvxprofile {}\n", Escape(command.get_name()));
  for (const CLI::Option* const option : DeclaredOptions(command)) {
    if (option->get_name() == "--help") continue;
    const std::string names = Escape(NamesOf(*option));
    line += option->get_required() ? fmt::format(".I \"{}\"\n", names) : fmt::format(".RI [ \"{}\" ]\n", names);
  }
  return line;
}

// The command line of a footer "Example: COMMAND LINE"; empty without one.
std::string ExampleOf(const CLI::App& command) {
  constexpr std::string_view kStart = "Example: ";
  const std::string footer = command.get_footer();
  return footer.starts_with(kStart) ? footer.substr(kStart.size()) : std::string();
}

std::string Examples(const CLI::App& app) {
  std::string text;
  for (const CLI::App* const command : DeclaredCommands(app)) {
    const std::string example = ExampleOf(*command);
    if (example.empty()) continue;
    text +=
        fmt::format(".PP\n{}:\n.PP\n.RS 4\n.nf\n{}\n.fi\n.RE\n", Escape(command->get_description()), Escape(example));
  }
  return text;
}

constexpr const char* kEnd = R"(.SH STANDARD INPUT AND OUTPUT
Where a file is read,
.B \-
is standard input, and where one is written, standard output.
Files are replaced all at once, or left as they were, also where the run is interrupted.
Links are followed; a link that leads nowhere is refused.
Pipes and character devices are written to where they are named as an output, and refused where they stand under the
name of a file that goes into a named folder.
.SH EXIT STATUS
.TP
.B 0
all went well
.TP
.B 1
something could not be done; standard error says what and why
.TP
.B 2
the command line is wrong
.TP
.B 3
a comparison found differences
.TP
.B 4
a check found a file that is wrong
.SH ENVIRONMENT
.TP
.B LC_ALL, LC_MESSAGES, LANG
language, by which media names are chosen
.TP
.B NVXPROFILE_CODEPAGE
number of the code page of narrow text, in place of the language's
.TP
.B NVXPROFILE_PROFILE_DIR
folder of the conversion table of text\-headed profiles
.TP
.B XDG_CONFIG_HOME
folder of the user's settings, in place of ~/.config
.TP
.B SOURCE_DATE_EPOCH
time that a save takes for the present, in seconds since 1970
.TP
.B TMPDIR
folder for what is made and looked at before it goes where it belongs
.TP
.B NO_COLOR
no colours on a terminal
.SH FILES
.TP
.I ~/.config/nvxprofile/settings.ini, /etc/nvxprofile/settings.ini
the user's and the system's settings; the key
.B ProfileDir
names the folder of the conversion table where the environment does not
.TP
.I QPFConvert.qpd
the conversion table in that folder, without which no text\-headed profile can be loaded
)";

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::string page = ".TH NVXPROFILE 1 \"\" \"nvxprofile " NVXPROFILE_VERSION "\" \"User Commands\"\n";
  page += fmt::format(".SH NAME\nnvxprofile \\- {}\n", Escape(app.get_description()));
  page += ".SH SYNOPSIS\n.B nvxprofile\n.I COMMAND\n.RI [ ARGUMENTS ]\n";
  page += ".SH OPTIONS\n" + OptionLines(app);
  page += ".SH COMMANDS\n";
  for (const CLI::App* const command : DeclaredCommands(app)) {
    page += fmt::format(".SS {}\n{}.PP\n{}.\n{}", Escape(command->get_name()), Synopsis(*command),
                        Escape(command->get_description()), OptionLines(*command));
  }
  return page + kEnd + ".SH EXAMPLES\n" + Examples(app);
}

}  // namespace nvx::tool
