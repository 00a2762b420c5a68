// The command line tool, driven as a process.
#pragma once

#include "support/files.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

namespace nvx::test {

struct ToolResult {
  int status = -1;
  std::string out;
  std::string err;

  friend std::ostream& operator<<(std::ostream& stream, const ToolResult& result) {
    return stream << "status " << result.status << "\n" << result.out << result.err;
  }
};

inline auto Succeeds() { return testing::Field("status", &ToolResult::status, 0); }

// Ends with status 1 and a message that has `part` in it.
inline auto Fails(const std::string& part = "") {
  return testing::AllOf(testing::Field("status", &ToolResult::status, 1),
                        testing::Field("err", &ToolResult::err, testing::HasSubstr(part)));
}

// Ends with status 2: the command line is wrong.
inline auto IsWrongUsage() { return testing::Field("status", &ToolResult::status, 2); }

// Runs a program, found as a shell finds it, and waits for it.
ToolResult RunProgram(std::vector<std::string> words);

// The tool of this build, or the program that NVXPROFILE_TOOL names: tests/tools/windows/tool runs that for Windows.
std::string ToolPath();

// A text as one word of a shell's command: there are sources in folders with blanks.
std::string ShellWord(const std::string& text);

// Runs the tool with these arguments, and with more behind them, and waits for it.
ToolResult RunTool(const std::vector<std::string>& arguments, const std::vector<std::string>& more = {});

// Runs a command of a shell, which is stopped if it does not end.
ToolResult Shell(const std::string& command);

// The tool as a word of such a command.
inline const std::string kTool = ShellWord(ToolPath());

}  // namespace nvx::test
