// One curve set as JSON, for the entries that are one and for those that hold some.
#pragma once

#include "json_text.h"
#include "payload.h"

#include <nvxprofile/curve.h>

namespace nvx::tool {

Json CurveSetToJson(CCurveData& set, Detail detail);

// Writes what CurveSetToJson gives with Detail::kSizes. A profile has hundreds of curves, and to make a tree of them
// takes longer than to load it.
void WriteCurveSizes(CCurveData& set, JsonWriter& out);

// Replaces the curves of the set. `usedType` is that of a set which the document gives none. Throws DocumentError.
void CurveSetFromJson(const Node& node, CCurveData& set, std::uint32_t usedType);

}  // namespace nvx::tool
