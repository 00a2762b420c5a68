// The entries that hold a whole ICC profile.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/profile_entry.h>

#include <cstdint>

// The buffer is an ICC profile, byte for byte. There is no parsed form: each question opens the buffer anew.
class NVX_EXPORT CICMEntry : public CProfileDataEntry {
 public:
  // Views of the option info.
  enum ICMOptionInfo : std::uint32_t {
    kIcmPlain = 0,   // no marker tag
    kIcmMarked = 2,  // a tag "agfa" or "AGFA"
  };

  // What Load and Save give as `error` when they fail.
  static constexpr std::uint32_t kErrorFile = 1;          // the file cannot be opened, read or written
  static constexpr std::uint32_t kErrorNoIccProfile = 2;  // Load: no readable ICC profile, or no such file

  CICMEntry();
  ~CICMEntry() override;

  // Copies the source with its buffer, type and label; false for null and where Copy gives false.
  bool DoImport(CProfileDataEntry* source) override;

  // Works out the option info. False, with the option info as it was, if the buffer is no readable ICC profile.
  bool BufferToData() override;

  // Channels of the profile's data colour space as CICCProfile::GetColorCount gives them; 0 for no readable profile.
  std::uint32_t GetColors();

  // Fills the buffer with the file as it stands, sets the option info from its tags and the complete flag. On a false
  // the entry is as it was. `option` takes no part.
  bool Load(const char16_t* path, std::uint32_t& error, ICMOptionInfo option);

  // Writes the buffer beside `path` and replaces the file at the end. False for an empty buffer, too.
  bool Save(const char16_t* path, std::uint32_t& error);

 protected:
  explicit CICMEntry(UsedType usedType);
};

// A second ICC profile beside the one proper.
class NVX_EXPORT CReplaceProfileEntry : public CICMEntry {
 public:
  CReplaceProfileEntry();
  ~CReplaceProfileEntry() override;
};
