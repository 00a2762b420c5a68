// nvxprofile completion: what a shell needs to complete the command line.
#include "command.h"
#include "files.h"
#include "manual.h"

#include <memory>
#include <string>

namespace nvx::tool {

void AddCompletionCommand(CommandLine& line) {
  Command command = line.AddCommand("completion", "Write the completion script of a shell");
  const auto shell = std::make_shared<std::string>();
  command.Add("SHELL", shell.get(), "The shell").Required().OneOf({"bash", "zsh", "fish"});
  command.Example("source <(nvxprofile completion bash)");
  command.Action([&line, shell] {
    const CLI::App& app = line.Declared();
    WriteStandardOutput(*shell == "bash"  ? BashCompletion(app)
                        : *shell == "zsh" ? ZshCompletion(app)
                                          : FishCompletion(app));
    return kSuccess;
  });
}

}  // namespace nvx::tool
