// Changes of single values, as the command line words them.
#pragma once

#include "profile_values.h"

#include <string>
#include <vector>

namespace nvx::tool {

// Sets each PATH=VALUE. Throws DocumentError.
void Assign(ProfileValues& values, const std::vector<std::string>& assignments);

// Writes a table of what was changed to standard output.
void PrintChanges(const ProfileValues& values);

}  // namespace nvx::tool
