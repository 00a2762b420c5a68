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
void AddInfoCommand(CLI::App& app, int& status);
void AddCurvesCommand(CLI::App& app, int& status);
void AddMediaCommand(CLI::App& app, int& status);
void AddLutCommand(CLI::App& app, int& status);
void AddExtractCommand(CLI::App& app, int& status);
void AddMasksCommand(CLI::App& app, int& status);
void AddLampCommand(CLI::App& app, int& status);
void AddSpecialCommand(CLI::App& app, int& status);
void AddHistoryCommand(CLI::App& app, int& status);
void AddImportHistoryCommand(CLI::App& app, int& status);
void AddConvertCommand(CLI::App& app, int& status);
void AddAdjustCommand(CLI::App& app, int& status);
void AddDumpCommand(CLI::App& app, int& status);
void AddBuildCommand(CLI::App& app, int& status);
void AddDiffCommand(CLI::App& app, int& status);
void AddValidateCommand(CLI::App& app, int& status);
void AddReportCommand(CLI::App& app, int& status);

}  // namespace nvx::tool
