// Saving what a command has changed.
#pragma once

#include <nvxprofile/profile_access.h>

#include <string>

namespace nvx::tool {

// Saves a loaded profile at `path` in the format that it was loaded from. Everything that it was loaded with goes out
// again: a profile of the current generation keeps its version 5, its replacement ICC profile and its calibrations.
// Buffers are written as they are, so whoever changed a payload has called DataToBuffer. The file is replaced at the
// end; on failure it is as it was, the reason goes to standard error and the result is false.
bool SaveProfile(CProfileAccess& access, const std::string& path);

// Writes a text as WriteOutput does.
void WriteText(const std::string& path, const std::string& text);

// Writes the model in the format of that number, and says whether it was written. A container is written from its first
// route, and so is a text-headed profile of version 1.
bool SaveModel(int format, CProfileData& data, const std::string& path);

}  // namespace nvx::tool
