// Text-headed profiles and their conversion table, of invented names. Files are put together from stored bytes, without
// the library's own writers.
#pragma once

#include "support/environment.h"
#include "support/files.h"

#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nvx::test {

// A table for printer label "PX", ink set label "SetA" and the resolutions 720 by 1080. Each key stands on a line of
// its own.
std::string ConversionTable();

// Without the line that starts with `key` and an equals sign.
std::string TableWithout(const std::string& table, std::string_view key);

// A folder with a conversion table that the library looks into as long as this lives.
class LegacyFolder : public TempFolder {
 public:
  explicit LegacyFolder(const std::string& table = ConversionTable());
  void WriteTable(const std::string& table) const;

 private:
  ScopedVariable variable_;
};

// A display profile of some 500 bytes that any ICC engine opens.
Bytes SmallIccProfile();

// The samples of 8 bits that the curves of a legacy profile start with.
std::vector<std::uint8_t> CurveSamples(std::uint32_t ink);

// Fills a model as a load of a legacy profile would: text view, and on routes 1 and 2 the entries of `route1` and
// `route2` by type, each with content. Curve entries have two inks; the curves of type 3 have ExtendInfo 5 and 3.
void FillLegacyProfile(CProfileData& data, const std::vector<std::uint32_t>& route1,
                       const std::vector<std::uint32_t>& route2);

// Writes such a profile in version 2, made at 13:24:05 on 29 February 2000.
bool WriteLegacyProfile(const std::string& path, const std::vector<std::uint32_t>& route1,
                        const std::vector<std::uint32_t>& route2);

}  // namespace nvx::test
