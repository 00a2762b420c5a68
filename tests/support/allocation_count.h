// Counts what the test program allocates with new.
#pragma once

#include <cstddef>

namespace nvx::test {

// Calls of operator new since the program started.
std::size_t AllocationCount();

}  // namespace nvx::test
