// What a report shows of a profile, in parts that can be left out.
#pragma once

#include "payload.h"

#include <nvxprofile/profile_access.h>

#include <string>
#include <vector>

namespace nvx::tool {

// One part of a profile under the key by which the page knows it. docs/report.md lists the parts.
struct ProfilePart {
  std::string key;
  Json content;
};

// The last part of a path.
std::string FileNameOf(const std::string& path);

// The line of a profile in the index.
Json IndexLine(const std::string& path, CProfileAccess& access);

// The parts that the profile has, those first that are worth most for their bytes.
std::vector<ProfilePart> PartsOf(CProfileAccess& access);

}  // namespace nvx::tool
