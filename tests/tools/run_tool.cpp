#include "tools/run_tool.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace nvx::test {
namespace {

std::string TextOf(const std::string& path) {
  const Bytes bytes = ReadBytes(path);
  return std::string(bytes.begin(), bytes.end());
}

}  // namespace

ToolResult RunProgram(std::vector<std::string> words) {
  const TempFolder folder;
  const std::string out = folder.File("out");
  const std::string err = folder.File("err");
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const ::pid_t child = ::fork();
  if (child == 0) {
    if (std::freopen(out.c_str(), "w", stdout) != nullptr && std::freopen(err.c_str(), "w", stderr) != nullptr) {
      ::execvp(pointers[0], pointers.data());
    }
    ::_exit(127);
  }
  ToolResult result;
  int status = 0;
  if (child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status)) result.status = WEXITSTATUS(status);
  result.out = TextOf(out);
  result.err = TextOf(err);
  return result;
}

std::string ToolPath() {
  const char* const other = std::getenv("NVXPROFILE_TOOL");
  return other != nullptr ? other : NVXPROFILE_TOOL;
}

std::string ShellWord(const std::string& text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

ToolResult Shell(const std::string& command) { return RunProgram({"timeout", "60", "bash", "-c", command}); }

ToolResult RunTool(const std::vector<std::string>& arguments, const std::vector<std::string>& more) {
  std::vector<std::string> words{ToolPath()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  words.insert(words.end(), more.begin(), more.end());
  return RunProgram(std::move(words));
}

}  // namespace nvx::test
