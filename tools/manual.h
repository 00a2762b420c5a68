// The manual page and the shell completions, made from the same declarations as --help.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace nvx::tool {

// The manual page of the tool and all its commands, in roff. A command's example is its footer, "Example: nvxprofile
// ...".
std::string ManualPage(const CLI::App& app);

// Completion scripts. What a value is follows from its name: one that is a choice of words completes as these, FILE,
// OUT, PATH and DOCUMENT as file names, DIR as folders, and what is none of them not at all.
std::string BashCompletion(const CLI::App& app);
std::string ZshCompletion(const CLI::App& app);
std::string FishCompletion(const CLI::App& app);

}  // namespace nvx::tool
