// One curve set as JSON, for the entries that are one and for those that hold some.
#pragma once

#include "payload.h"

#include <nvxprofile/curve.h>

namespace nvx::tool {

Json CurveSetToJson(CCurveData& set);

// Replaces the curves of the set. Throws DocumentError.
void CurveSetFromJson(const Node& node, CCurveData& set);

}  // namespace nvx::tool
