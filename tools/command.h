// The commands of the tool. Each file below commands/ defines one Add function, and main.cpp calls them all.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace nvx::tool {

// Exit statuses, the same for every command.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;    // something could not be done; standard error says what and why
inline constexpr int kUsage = 2;      // the command line is wrong
inline constexpr int kDifferent = 3;  // a comparison found differences
inline constexpr int kUnsound = 4;    // a check found a file that is wrong

// An Add function adds a subcommand to `app`; its callback stores the exit status in `status`.
void AddListCommand(CLI::App& app, int& status);
void AddInfoCommand(CLI::App& app, int& status);
void AddGetCommand(CLI::App& app, int& status);
void AddSetCommand(CLI::App& app, int& status);
void AddCopyCommand(CLI::App& app, int& status);
void AddCurvesCommand(CLI::App& app, int& status);
void AddMediaCommand(CLI::App& app, int& status);
void AddLutCommand(CLI::App& app, int& status);
void AddExtractCommand(CLI::App& app, int& status);
void AddMasksCommand(CLI::App& app, int& status);
void AddLampCommand(CLI::App& app, int& status);
void AddSpecialCommand(CLI::App& app, int& status);
void AddHistoryCommand(CLI::App& app, int& status);
void AddImportHistoryCommand(CLI::App& app, int& status);
void AddRemoveCalibrationCommand(CLI::App& app, int& status);
void AddRenameCalibrationCommand(CLI::App& app, int& status);
void AddCalibrateCommand(CLI::App& app, int& status);
void AddApplyCalCommand(CLI::App& app, int& status);
void AddConvertCommand(CLI::App& app, int& status);
void AddAdjustCommand(CLI::App& app, int& status);
void AddDumpCommand(CLI::App& app, int& status);
void AddBuildCommand(CLI::App& app, int& status);
void AddDiffCommand(CLI::App& app, int& status);
void AddValidateCommand(CLI::App& app, int& status);
void AddReportCommand(CLI::App& app, int& status);
void AddCompletionCommand(CLI::App& app, int& status);

}  // namespace nvx::tool
