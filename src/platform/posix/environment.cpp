#include "platform/environment.h"

#include <cstdlib>

namespace nvx::platform {

std::optional<std::string> EnvironmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr || *value == 0) return std::nullopt;
  return value;
}

}  // namespace nvx::platform
