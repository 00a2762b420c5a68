// A plain ICC profile as a profile file.
#pragma once

#include <nvxprofile/profile_file.h>

// The whole file is one entry of UsedType 10 on route 1, unchanged; of the information record only FileName is filled.
// A save writes the ICC profile of that entry with the target's name in its tag "desc", as docs/formats/icc.md tells,
// and gives false if there is no such entry on route 1 or its bytes are no ICC profile. `route` takes no part.
class NVX_EXPORT CProfileFileICC : public CProfileFile {
 public:
  CProfileFileICC();
  ~CProfileFileICC() override;

 protected:
  bool LoadHeader(CNvxFile& file, CProfileData* data) override;
  bool LoadEntries(CNvxFile& file, CProfileData* data) override;
  bool SaveHeader(CNvxFile& file, CProfileData* data, std::uint32_t route) override;
  bool SaveBody(CNvxFile& file, CProfileData* data, std::uint32_t route) override;
};
