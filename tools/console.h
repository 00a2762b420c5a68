// How the system hands over arguments and takes text.
#pragma once

#include <string>
#include <vector>

namespace nvx::tool {

// Lets the console show UTF-8, and a redirected output take the bytes as they are, as long as this lives.
class Console {
 public:
  Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  ~Console();

 private:
  unsigned before_ = 0;  // code page that the console had
};

// The arguments in UTF-8, the program's name first.
std::vector<std::string> Arguments(int argc, char** argv);

// Sets a variable of this process's environment, for the library to read.
void SetVariable(const char* name, const char* value);

}  // namespace nvx::tool
