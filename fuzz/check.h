// A promise that does not hold is a finding.
#pragma once

#include <cstdlib>

namespace nvx::fuzz {

inline void Check(bool condition) {
  if (!condition) std::abort();
}

}  // namespace nvx::fuzz
