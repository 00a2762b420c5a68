// Which format a file has.
#pragma once

#include <nvxprofile/entry_types.h>
#include <nvxprofile/file.h>
#include <nvxprofile/profile_file.h>

#include <memory>
#include <string_view>

namespace nvx {

// True for a path that is taken for an ICC profile whatever stands in the file.
bool HasIccExtension(std::u16string_view path);

// A format object for the file behind an open stream, as CProfileFile::CreateProfileFile gives it for its path; null if
// it is of no known kind. The stream stands at its start afterwards, and nothing is recorded with its diagnosis: what
// is no file of one kind may be one of another.
std::unique_ptr<CProfileFile> DetectFormat(CNvxFile& file);

struct LoadedFormat {
  std::unique_ptr<CProfileFile> format;  // null for a file of no known kind
  bool isLoaded = false;
};

// Detects the format and loads the file behind an open stream in one pass over it. What is wrong with a file of a known
// kind goes to the stream's diagnosis.
LoadedFormat LoadProfile(CNvxFile& file, CProfileData& data);

}  // namespace nvx
