// The description of a profile that leaves for a file.
#pragma once

#include <nvxprofile/file.h>
#include <nvxprofile/icc_profile.h>

namespace nvx {

// Puts the name of the file that the stream writes into the tag "desc", wide and in the ANSI code page, each cut to 127
// characters or bytes. A profile without the tag stays as it is, and so does one whose tag has another type than the
// text description, as profiles of version 4 have it.
void RewriteDescription(CICCProfile& profile, CNvxFile& file);

}  // namespace nvx
