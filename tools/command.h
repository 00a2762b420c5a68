// The commands of the tool. Each file below commands/ defines one Add function, and main.cpp calls them all.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace nvx::tool {

// Exit statuses.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;  // the library's own message went to standard error
inline constexpr int kUsage = 2;

// An Add function adds a subcommand to `app`; its callback stores the exit status in `status`.
[[gnu::weak]] void AddInfoCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddCurvesCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddMediaCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddLutCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddExtractCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddMasksCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddLampCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddSpecialCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddHistoryCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddImportHistoryCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddConvertCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddAdjustCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddDumpCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddBuildCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddDiffCommand(CLI::App& app, int& status);
[[gnu::weak]] void AddValidateCommand(CLI::App& app, int& status);

}  // namespace nvx::tool
