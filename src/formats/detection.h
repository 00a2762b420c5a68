// Which format a file has.
#pragma once

#include <nvxprofile/file.h>
#include <nvxprofile/profile_file.h>

#include <memory>

namespace nvx {

// A format object for the file behind an open stream, as CProfileFile::CreateProfileFile gives it for its path; null if
// it is of no known kind. The stream stands at its start afterwards, and nothing is recorded with its diagnosis: what
// is no file of one kind may be one of another.
std::unique_ptr<CProfileFile> DetectFormat(CNvxFile& file);

}  // namespace nvx
