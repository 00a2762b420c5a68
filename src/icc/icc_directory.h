// Header and tag table of an ICC profile: their form and their checks. docs/formats/icc.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/file.h>
#include <nvxprofile/icc_header.h>

#include <cstdint>

namespace nvx {

// Number of a signature, the first character most significant.
constexpr std::uint32_t Signature(const char (&text)[5]) { return SwapBytes(Magic(text)); }

struct IccHeaderForm : IccHeader {
  static constexpr std::uint32_t kSignature = Signature("acsp");

  IccHeaderForm() = default;
  explicit IccHeaderForm(const IccHeader& header) : IccHeader(header) {}

  template <class Self, class Codec>
  static constexpr void Describe(Self& header, Codec& codec) {
    codec.Number(header.phSize);
    codec.Number(header.phCMMType);
    codec.Number(header.phVersion);
    codec.Number(header.phClass);
    codec.Number(header.phDataColorSpace);
    codec.Number(header.phConnectionSpace);
    for (auto& part : header.phDateTime) codec.Number(part);
    codec.Number(header.phSignature);
    codec.Number(header.phPlatform);
    codec.Number(header.phProfileFlags);
    codec.Number(header.phManufacturer);
    codec.Number(header.phModel);
    codec.Number(header.phAttributes);
    codec.Number(header.phRenderingIntent);
    for (auto& part : header.phIlluminant) codec.Number(part);
    codec.Number(header.phCreator);
    codec.Bytes(header.phProfileID, sizeof header.phProfileID);
    codec.Bytes(header.phReserved, sizeof header.phReserved);
  }
};

struct IccTagForm : IccTag {
  template <class Self, class Codec>
  static constexpr void Describe(Self& tag, Codec& codec) {
    codec.Number(tag.signature);
    codec.Number(tag.offset);
    codec.Number(tag.size);
  }
};

inline constexpr std::uint32_t kIccHeaderSize = kRecordSize<IccHeaderForm>;
inline constexpr std::uint32_t kIccTagEntrySize = kRecordSize<IccTagForm>;
inline constexpr std::uint32_t kIccTableStart = kIccHeaderSize + 4;  // behind the tag count

static_assert(kIccHeaderSize == 128);
static_assert(kIccTagEntrySize == 12);

// The same as ReadIccDirectory of the published header for a profile that reaches from where the stream stands to its
// end. Only header and table are read.
bool ReadIccDirectory(CNvxFile& file, IccDirectory& directory);

// Channels of a data colour space as callers of CICCProfile see them: 4 for CMYK, 6 to 8 for 6CLR to 8CLR, else 3.
std::uint32_t IccColorCount(std::uint32_t colorSpace);

}  // namespace nvx
