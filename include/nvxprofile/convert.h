// From the text-headed generation of profiles to the current one.
#pragma once

#include <nvxprofile/export.h>
#include <nvxprofile/profile_data.h>
#include <nvxprofile/profile_info.h>

#include <cstdint>
#include <memory>

// Loads an old profile, builds a new one from it and saves that. The calls in their order: ProfileLoad,
// SetupModuleVersion, ConvertV2ToV3Profile, SaveV3Profile. docs/formats/conversion.md tells what becomes of each entry.
//
// A conversion may be repeated on one object, with the same result each time. Objects are independent of each other;
// one object is for one thread at a time.
class NVX_EXPORT CConvertV2ToV3Profile {
 public:
  CConvertV2ToV3Profile();
  CConvertV2ToV3Profile(const CConvertV2ToV3Profile&) = delete;
  CConvertV2ToV3Profile& operator=(const CConvertV2ToV3Profile&) = delete;
  virtual ~CConvertV2ToV3Profile();

  // Loads a profile of any generation; false, with nothing loaded, if that fails. The profiles of a load before are
  // gone in any case.
  bool ProfileLoad(const char16_t* path);

  // The version that CreateModule of the new profile ends with; cut to 9 characters.
  void SetupModuleVersion(const char16_t* version);

  // Builds the new profile; not before a successful ProfileLoad. The record must be given. Of a source that is no
  // text-headed profile the entries are converted all the same and the record's own names and numbers are kept; masks,
  // large parameters and special colours, which no conversion takes over, are then no longer announced in the record.
  // MakerText is always that of the maker, never a user's name. Entries got from GetProfileDataEntry_V3 before are
  // invalid from then on.
  //
  // False, with the new profile as it was, if an entry that the conversion takes over is unread or was read in part:
  // what it holds beyond that would be lost. False without a loaded profile.
  bool ConvertV2ToV3Profile(const _tagDBDeviceProfileInfo* database);

  // Saves the new profile as CProfileFileQPFv3 does, beside the target and over it at the end. After a false, such as
  // that for a profile without an ICC profile, what was there before is there still.
  bool SaveV3Profile(const char16_t* path);

  // The first entry of a type in the old and in the new profile; null if there is none. They stay the object's.
  CProfileDataEntry* GetProfileDataEntry_V2(std::uint32_t usedType);
  CProfileDataEntry* GetProfileDataEntry_V3(std::uint32_t usedType);

 protected:
  // Two new, empty profiles.
  void Initialize();
  // No profiles.
  void DeleteContents();

  // Turns the record of the new profile, which holds a copy of the old one's, into its binary view.
  void SetupV3HeaderString(const _tagDBDeviceProfileInfo* database);

  // Appends to the target's curve set a curve of 16 bits for each curve of the source: the source's samples in the one
  // case, 256 samples on a straight line from 0 to 65535 in the other. With setLimitKey their ExtendInfo is 12 or 14,
  // else the source's; with onlyVariable curves of another ExtendInfo than 5 are left out. Both entries' buffers are
  // renewed. An entry without a curve set, and a source that is unread or was read in part, are left alone.
  void Convert8bitTo16bit(CProfileDataEntry* source, CProfileDataEntry* target, bool setLimitKey, bool onlyVariable);
  void GetLineEntryCurve(CProfileDataEntry* source, CProfileDataEntry* target, bool setLimitKey, bool onlyVariable);

 private:
  bool ConvertEntry(CProfileDataEntry& source);

  std::unique_ptr<CProfileData> v2_;
  std::unique_ptr<CProfileData> v3_;
  char16_t sourcePath_[260] = {};
  std::int32_t sourceFormat_ = 0;
  char16_t moduleVersion_[10] = {};
};
