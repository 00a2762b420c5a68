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
  Json greatest;  // of curves and tables: the greatest difference of two samples
};

std::vector<Difference> Compare(CProfileAccess& a, CProfileAccess& b);

}  // namespace nvx::tool
