// The records of a media property set; docs/formats/media_property.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/media_property.h>

namespace nvx {

struct MediaPropertyHeader {
  static constexpr const char* kTitle = "media property";
  static constexpr std::uint32_t kMagic = Magic("IDEM");
  static constexpr std::uint32_t kVersion = 0x00010000;

  std::uint32_t entryCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    codec.OwnSize("header size");
    codec.Constant("version", kVersion);
    codec.Number("entry count", record.entryCount);
  }
};

struct MediaPropertyEntryHeader {
  static constexpr std::uint32_t kMagic = Magic("HEPM");

  std::uint32_t usedType = 0;
  std::uint32_t blockSize = 68;
  std::uint32_t parameterMax = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    codec.OwnSize("header size");
    codec.Number("used type", record.usedType);
    codec.Number("block size", record.blockSize);
    codec.Number("parameter max", record.parameterMax);
  }
};

struct MediaPropertyBlock {
  static constexpr const char* kTitle = "data block";
  static constexpr std::uint32_t kMagic = Magic("ADPM");

  std::int32_t parameters[CMediaPropertyDataEntry::kParameterRoom] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    for (auto& parameter : record.parameters) codec.Number("parameters", parameter);
  }
};

static_assert(kRecordSize<MediaPropertyHeader> == 16);
static_assert(kRecordSize<MediaPropertyEntryHeader> == 20);
static_assert(kRecordSize<MediaPropertyBlock> == 68);

}  // namespace nvx
