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
    codec.Number("phSize", header.phSize);
    codec.Number("phCMMType", header.phCMMType);
    codec.Number("phVersion", header.phVersion);
    codec.Number("phClass", header.phClass);
    codec.Number("phDataColorSpace", header.phDataColorSpace);
    codec.Number("phConnectionSpace", header.phConnectionSpace);
    for (auto& part : header.phDateTime) codec.Number("phDateTime", part);
    codec.Number("phSignature", header.phSignature);
    codec.Number("phPlatform", header.phPlatform);
    codec.Number("phProfileFlags", header.phProfileFlags);
    codec.Number("phManufacturer", header.phManufacturer);
    codec.Number("phModel", header.phModel);
    codec.Number("phAttributes", header.phAttributes);
    codec.Number("phRenderingIntent", header.phRenderingIntent);
    for (auto& part : header.phIlluminant) codec.Number("phIlluminant", part);
    codec.Number("phCreator", header.phCreator);
    codec.Bytes("phProfileID", header.phProfileID, sizeof header.phProfileID);
    codec.Bytes("phReserved", header.phReserved, sizeof header.phReserved);
  }
};

struct IccTagForm : IccTag {
  template <class Self, class Codec>
  static constexpr void Describe(Self& tag, Codec& codec) {
    codec.Number("signature", tag.signature);
    codec.Number("offset", tag.offset);
    codec.Number("size", tag.size);
  }
};

inline constexpr std::uint32_t kIccHeaderSize = kRecordSize<IccHeaderForm>;
inline constexpr std::uint32_t kIccTagEntrySize = kRecordSize<IccTagForm>;
inline constexpr std::uint32_t kIccTableStart = kIccHeaderSize + 4;  // behind the tag count

static_assert(kIccHeaderSize == 128);
static_assert(kIccTagEntrySize == 12);

// Channels of a data colour space as callers of CICCProfile see them: 4 for CMYK, 6 to 8 for 6CLR to 8CLR, else 3.
std::uint32_t IccColorCount(std::uint32_t colorSpace);

}  // namespace nvx
