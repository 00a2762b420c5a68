// One curve set as JSON, for the entries that are one and for those that hold some.
#pragma once

#include "payload.h"

#include <nvxprofile/curve.h>

namespace nvx::tool {

Json CurveSetToJson(CCurveData& set, Detail detail);

// Replaces the curves of the set. `usedType` is that of a set which the document gives none. Throws DocumentError.
void CurveSetFromJson(const Node& node, CCurveData& set, std::uint32_t usedType);

}  // namespace nvx::tool
