// The header and the tag table of an ICC profile, as plain facts.
#pragma once

#include <nvxprofile/export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class CNvxFile;

namespace nvx {

class Diagnosis;

// The 128 bytes of the header, field by field, with numbers in host byte order. Signatures are numbers whose first
// character is the most significant byte.
struct IccHeader {
  std::uint32_t phSize = 0;  // bytes of the profile
  std::uint32_t phCMMType = 0;
  std::uint32_t phVersion = 0;  // major in the topmost byte, minor in the topmost half of the next
  std::uint32_t phClass = 0;
  std::uint32_t phDataColorSpace = 0;
  std::uint32_t phConnectionSpace = 0;
  std::uint16_t phDateTime[6] = {};  // year, month, day, hour, minute, second in UTC
  std::uint32_t phSignature = 0;     // "acsp"
  std::uint32_t phPlatform = 0;
  std::uint32_t phProfileFlags = 0;
  std::uint32_t phManufacturer = 0;
  std::uint32_t phModel = 0;
  std::uint64_t phAttributes = 0;
  std::uint32_t phRenderingIntent = 0;
  std::int32_t phIlluminant[3] = {};  // X, Y, Z in units of 1/65536
  std::uint32_t phCreator = 0;
  std::uint8_t phProfileID[16] = {};  // MD5 of the profile, or zero for none
  std::uint8_t phReserved[28] = {};
};

static_assert(sizeof(IccHeader) == 128);

// One line of the tag table.
struct IccTag {
  std::uint32_t signature = 0;
  std::uint32_t offset = 0;  // of the tag's data, from the start of the profile
  std::uint32_t size = 0;    // of the tag's data in bytes, padding not counted
};

// What a profile says about itself. Nothing of it was looked at but header and tag table, which are whole and sound.
struct NVX_EXPORT IccDirectory {
  IccHeader header;
  std::vector<IccTag> tags;  // in the order of the table; no signature stands twice

  // Null if there is none.
  const IccTag* Find(std::uint32_t signature) const;
};

// Reads header and tag table of the profile in a block. False, with `directory` as it was, for what is no ICC profile;
// docs/formats/icc.md says what is checked. `diagnosis` may be null.
NVX_EXPORT bool ReadIccDirectory(const void* bytes, std::size_t size, IccDirectory& directory,
                                 Diagnosis* diagnosis = nullptr);

// The same of the profile that reaches from where the stream stands to its end. Only header and table are read; what is
// wrong goes to the diagnosis of the stream.
NVX_EXPORT bool ReadIccDirectory(CNvxFile& file, IccDirectory& directory);

}  // namespace nvx
