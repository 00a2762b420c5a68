// What the commands have in common: loading a profile, and names for what is in it.
#pragma once

#include "payload.h"

#include <nvxprofile/profile_access.h>

#include <string>
#include <string_view>
#include <vector>

namespace nvx::tool {

// Loads a profile; on failure the library's message goes to standard error and the result is false.
bool LoadProfile(const std::string& path, CProfileAccess& access);

std::string_view FormatName(int format);
// Class name of an entry type, "CLinearizationEntry" for 6; empty for a type without a class.
std::string_view ClassName(std::uint32_t usedType);
// What an entry type is for, "linearization" for 6.
std::string_view EntryName(std::uint32_t usedType);
// The entry type with that name, or whose number the text is; 0 for none.
std::uint32_t UsedTypeByName(std::string_view name);

// The entries of a route, in order.
std::vector<CProfileDataEntry*> EntriesOf(CProfileRoute& route);
std::vector<CProfileRoute*> RoutesOf(CProfileData& data);

// The comment of an error record in UTF-8.
std::string MessageOf(const CError& error);

// Writes the document to standard output.
void PrintJson(const Json& json);

}  // namespace nvx::tool
