// What a profile says about itself, read from its headers alone: for lists of many profiles.
#pragma once

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/export.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <optional>
#include <string>

namespace nvx {

// A calibration as the entry headers of a history describe it.
struct CalibrationSummary {
  std::uint32_t code = 0;
  std::int32_t value = 0;
  std::int64_t time = 0;  // seconds since 1970
  std::u16string name;
};

// The headers of one profile. Made anew for each file.
struct ProfileSummary {
  int format = 0;          // as CProfileFile::GetMyFormat gives it
  CProfileData headers;    // its information record is that of a load; it has no entries
  IccDirectory directory;  // of the ICC formats, empty for the others
  std::uint32_t calibrationCount = 0;
  std::optional<CalibrationSummary> newestCalibration;  // the one that a print job takes; none without a time
};

// Reads of the file at `path` what `summary` holds and no more: some kilobytes, whatever its size. False, with
// `summary` in any state, for a file that cannot be opened or is of no known format and for headers that no load takes;
// the reasons go to `diagnosis`, which may be null.
//
// Entries are not looked at: a file that has a summary may still not load. What a load takes from the entries (flags of
// the routes, wave form, output block, separation of special colours) is not in the record. A history whose entry
// headers are broken counts as none.
NVX_EXPORT bool SummarizeProfile(const char16_t* path, ProfileSummary& summary, Diagnosis* diagnosis = nullptr);

}  // namespace nvx
