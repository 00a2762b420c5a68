// The manual page and the shell completion, made from the same declarations as --help.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace nvx::tool {

// The manual page of the tool and all its commands, in roff.
std::string ManualPage(const CLI::App& app);

// A completion script for bash.
std::string BashCompletion(const CLI::App& app);

}  // namespace nvx::tool
