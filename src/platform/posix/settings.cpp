#include "platform/settings.h"

#include "platform/environment.h"

namespace nvx::platform {

std::vector<std::string> SettingsFolders() {
  std::vector<std::string> folders;
  if (auto home = EnvironmentVariable("XDG_CONFIG_HOME")) {
    folders.push_back(std::move(*home));
  } else if (auto user = EnvironmentVariable("HOME")) {
    folders.push_back(*user + "/.config");
  }
  folders.emplace_back("/etc");
  return folders;
}

}  // namespace nvx::platform
