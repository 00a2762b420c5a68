// A profile that a command changes in one of its entries.
#pragma once

#include "files.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_edit.h>

#include <cstdint>
#include <string>
#include <vector>

namespace nvx::tool {

class ChangedProfile {
 public:
  // Loads the file, or standard input for "-". Throws std::runtime_error with path and reason.
  explicit ChangedProfile(const std::string& file);

  CProfileAccess& Access() { return access_; }
  CProfileData& Data() { return *access_.GetProfileData(); }

  // Writes the profile to `path` as WriteOutput does, with the present buffer of the entry of that type; every other
  // byte is that of the file. For an entry that the file does not have, which only profiles of the current generation
  // may get, the whole model is saved. Throws std::runtime_error with path and reason; what was there is then as it
  // was.
  void Save(std::uint32_t usedType, const std::string& path);

 private:
  std::vector<std::uint8_t> SavedModel(const std::string& path);

  std::string file_;
  InputFile input_;
  CProfileAccess access_;
  ProfileEdit edit_;
};

// Parses the entry's buffer. True only if the payload says all that stands there, so that it may be changed and written
// anew.
bool ParsesWhole(CProfileDataEntry& entry);

// Tells what became of the file at `path`, unless that is standard output itself.
void PrintDone(const std::string& path, const std::string& what);

// Writes a text as WriteOutput does.
void WriteText(const std::string& path, const std::string& text);

}  // namespace nvx::tool
