// Saving that never harms, as far as the operating system has a part in it.
#pragma once

#include "platform/file_system.h"

#include <memory>
#include <string_view>

namespace nvx::platform {

// A new file beside a target, which takes the target's place all at once or leaves it alone. Where the file system can,
// the new file has no name until the very end, so that not even a killed process leaves one behind; and what is left by
// one killed in the last two calls is taken away by the next save of the same target.
//
// Where nothing can be put beside the target or over it, though the target itself may be written (its folder is not
// writable, or it is a mount point), the new file lies in the temporary folder and its bytes are copied into the target
// at the end; see docs/robustness.md for what holds then.
class ReplacementFile {
 public:
  ReplacementFile();
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;
  // Without a Commit the new file is removed.
  ~ReplacementFile();

  // Makes the new file, with the target's owner and permissions where it exists. A link is followed. A target that is
  // no plain file, such as a device, is opened itself. kNoFile on failure; the handle is the caller's.
  FileHandle Create(std::u16string_view target);

  // Puts the bytes of `file` on the disk and the file in the place of the target.
  bool Commit(FileHandle file);

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace nvx::platform
