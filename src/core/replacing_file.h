// Saving that never harms: the stream writes beside its target and takes the target's place at the end.
#pragma once

#include "platform/replacement_file.h"

#include <nvxprofile/file.h>

namespace nvx {

// A stream whose GetFileName and GetPathName are those of the target.
class ReplacingFile : public CNvxFile {
 public:
  bool Create(const char16_t* target);
  // Flushes and renames. Without it, or after a false, the target is as it was and nothing lies beside it.
  bool Commit();

 private:
  platform::ReplacementFile replacement_;
};

// Runs write(stream) and puts the result in the place of `path` if it gives true.
template <class Write>
bool SaveByReplacing(const char16_t* path, Write&& write) {
  ReplacingFile file;
  return file.Create(path) && write(static_cast<CNvxFile&>(file)) && file.Commit();
}

}  // namespace nvx
