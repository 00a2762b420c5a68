// The version of the library. What may change from one to the next stands in CHANGELOG.md.
#pragma once

#include <nvxprofile/export.h>

// Of the headers that a program is compiled with.
#define NVXPROFILE_VERSION_MAJOR 1
#define NVXPROFILE_VERSION_MINOR 0
#define NVXPROFILE_VERSION_PATCH 0

namespace nvx {

// Of the library that the program runs with, such as "1.0.0".
NVX_EXPORT const char* Version();

}  // namespace nvx
