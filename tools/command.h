// The commands of the tool. Each file below commands/ defines one Add function, and main.cpp calls them all.
#pragma once

#include "command_line.h"

namespace nvx::tool {

// Exit statuses, the same for every command.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;    // something could not be done; standard error says what and why
inline constexpr int kUsage = 2;      // the command line is wrong
inline constexpr int kDifferent = 3;  // a comparison found differences
inline constexpr int kUnsound = 4;    // a check found a file that is wrong

// An Add function declares one command.
void AddListCommand(CommandLine& line);
void AddInfoCommand(CommandLine& line);
void AddGetCommand(CommandLine& line);
void AddSetCommand(CommandLine& line);
void AddCopyCommand(CommandLine& line);
void AddCurvesCommand(CommandLine& line);
void AddMediaCommand(CommandLine& line);
void AddLutCommand(CommandLine& line);
void AddExtractCommand(CommandLine& line);
void AddMasksCommand(CommandLine& line);
void AddLampCommand(CommandLine& line);
void AddSpecialCommand(CommandLine& line);
void AddHistoryCommand(CommandLine& line);
void AddImportHistoryCommand(CommandLine& line);
void AddRemoveCalibrationCommand(CommandLine& line);
void AddRenameCalibrationCommand(CommandLine& line);
void AddCalibrateCommand(CommandLine& line);
void AddApplyCalCommand(CommandLine& line);
void AddConvertCommand(CommandLine& line);
void AddAdjustCommand(CommandLine& line);
void AddDumpCommand(CommandLine& line);
void AddBuildCommand(CommandLine& line);
void AddDiffCommand(CommandLine& line);
void AddValidateCommand(CommandLine& line);
void AddReportCommand(CommandLine& line);
void AddCompletionCommand(CommandLine& line);

}  // namespace nvx::tool
