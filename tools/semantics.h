// What loads and yet prints wrong.
#pragma once

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/profile_access.h>

#include <vector>

namespace nvx::tool {

// Errors: gray balance samples that are no indices of the linearization, so that the merge of the two saturates; curves
// that fall where more has to stay more; inks of the separation table without a linearization; a separation table that
// goes beyond an ink limit. Warnings: inks that have no gray balance or ink limit where others have one. Offsets take
// no part, as no byte is at fault.
std::vector<Finding> FindSemanticFaults(CProfileAccess& access);

}  // namespace nvx::tool
