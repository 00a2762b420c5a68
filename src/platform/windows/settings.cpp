#include "platform/settings.h"

#include "platform/environment.h"

namespace nvx::platform {

std::vector<std::string> SettingsFolders() {
  std::vector<std::string> folders;
  for (const char* const variable : {"APPDATA", "ProgramData"}) {
    if (auto folder = EnvironmentVariable(variable)) folders.push_back(std::move(*folder));
  }
  return folders;
}

}  // namespace nvx::platform
