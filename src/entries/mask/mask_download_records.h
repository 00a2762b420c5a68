// The records of the mask download stream; docs/formats/mask_download.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/mask_download.h>

namespace nvx {

// The stream header as it stands in the published structure.
struct WeftHeaderRecord {
  tagWeftHeader header;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number(record.header.VersionMajor);
    codec.Number(record.header.VersionMinor);
    codec.Number(record.header.DataCount);
    codec.Number(record.header.Reserved[0]);
    codec.Number(record.header.Reserved[1]);
  }
};

struct WeftBlockHeader {
  static constexpr std::uint32_t kMagic = Magic("TFEW");
  static constexpr std::uint32_t kBodyMagic = Magic("DFEW");
  static constexpr std::uint32_t kBodyMagicSize = 4;

  std::uint32_t magic = kMagic;
  std::uint32_t headerSize = 24;
  std::uint32_t blockType = 0;
  std::uint32_t length = 0;  // of the body, its magic included; readers go by the type
  std::uint32_t valueCount = 0;
  std::uint32_t byteCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number(record.magic);
    codec.Number(record.headerSize);
    codec.Number(record.blockType);
    codec.Number(record.length);
    codec.Number(record.valueCount);
    codec.Number(record.byteCount);
  }
};

// The bytes of a block of type 6.
struct WeftOutputRecord {
  static constexpr std::uint32_t kBlockType = 6;

  std::uint16_t fourthValue = 0;
  std::uint8_t codeA = 0;
  std::uint8_t codeB = 0;
  char text[161] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number(record.fourthValue);
    codec.Number(record.codeA);
    codec.Number(record.codeB);
    codec.Text(record.text, 160);
  }
};

static_assert(kRecordSize<WeftHeaderRecord> == 20);
static_assert(kRecordSize<WeftBlockHeader> == 24);
static_assert(kRecordSize<WeftOutputRecord> == 164);

}  // namespace nvx
