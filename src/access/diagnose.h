// Why a profile does not load, and what is suspicious in one that does.
#pragma once

#include <nvxprofile/diagnosis.h>

class CNvxFile;

namespace nvx {

// Looks at an open file from its start, as DiagnoseProfile does at the one of a path. The diagnosis stays with the
// file.
bool DiagnoseProfile(CNvxFile& file, Diagnosis& diagnosis);

}  // namespace nvx
