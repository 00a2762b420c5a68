// The information record as JSON, both ways: every field under its own name, and the view that LayoutNumber says.
#pragma once

#include "payload.h"

#include <nvxprofile/profile_data.h>

namespace nvx::tool {

Json RecordToJson(const _tagDeviceProfileInfo& info);

// Fills the fields that the node has and leaves the others. Media names go into an array that the data owns. Throws
// DocumentError.
void RecordFromJson(const Node& node, CProfileData& data);

}  // namespace nvx::tool
