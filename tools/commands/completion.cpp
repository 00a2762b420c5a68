// nvxprofile completion: what a shell needs to complete the command line.
#include "command.h"
#include "files.h"
#include "manual.h"

#include <memory>
#include <string>

namespace nvx::tool {

void AddCompletionCommand(CLI::App& app, int& status) {
  CLI::App* const command = app.add_subcommand("completion", "Write the completion script of a shell");
  const auto shell = std::make_shared<std::string>();
  command->add_option("SHELL", *shell, "The shell")->required()->check(CLI::IsMember({"bash", "zsh", "fish"}));
  command->footer("Example: source <(nvxprofile completion bash)");
  command->callback([&app, shell, &status] {
    const std::string script = *shell == "bash"  ? BashCompletion(app)
                               : *shell == "zsh" ? ZshCompletion(app)
                                                 : FishCompletion(app);
    WriteStandardOutput(script);
    status = kSuccess;
  });
}

}  // namespace nvx::tool
