// How the system hands over arguments and takes text.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace nvx::tool {

// Lets the console show UTF-8 and colours, and streams take bytes as they are, as long as this lives.
class Console {
 public:
  Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  ~Console();  // NOLINT(performance-trivially-destructible): on Windows it has work to do

 private:
  [[maybe_unused]] unsigned codePage_ = 0;  // that the console of Windows had before
};

// The arguments as UTF-8 on Windows, as bytes elsewhere; the program's name first. Throws std::runtime_error for one
// that cannot be held so.
std::vector<std::string> Arguments(int argc, char** argv);

// True if the stream goes to a terminal.
bool IsTerminal(std::FILE* stream);
// True if a terminal would show characters of UTF-8.
bool ShowsUtf8();

// Sets a variable of this process's environment, for the library to read.
void SetVariable(const char* name, const std::string& value);

}  // namespace nvx::tool
