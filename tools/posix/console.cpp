#include "console.h"

#include <cstdlib>

namespace nvx::tool {

Console::Console() = default;
Console::~Console() = default;

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

void SetVariable(const char* name, const char* value) { ::setenv(name, value, 1); }

}  // namespace nvx::tool
