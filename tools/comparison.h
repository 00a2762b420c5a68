// What two profiles differ in, in terms of the model.
#pragma once

#include "payload.h"

#include <nvxprofile/profile_access.h>

#include <string>
#include <vector>

namespace nvx::tool {

struct Difference {
  std::string place;  // "record/MediaName", "entry 6 linearization/ink 1", ...
  std::string what;   // "differs", "only in A", "only in B"
  Json a;             // the values, null where there is none to show
  Json b;
  // Of curves and tables: the greatest difference of two samples, in their units (null for curves of different counts)
  // and in percent of the range, B less A; and where that is, "45 %" of the input, with the output in a table.
  Json greatest;
  Json percent;
  std::string at;
};

// Empty for profiles that do not differ.
std::vector<Difference> Compare(CProfileAccess& a, CProfileAccess& b);

}  // namespace nvx::tool
