// The records of the mask download stream; docs/formats/mask_download.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/mask_download.h>

namespace nvx {

// The stream header as it stands in the published structure.
struct WeftHeaderRecord {
  static constexpr const char* kTitle = "mask download header";
  tagWeftHeader header;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("version major", record.header.VersionMajor);
    codec.Number("version minor", record.header.VersionMinor);
    codec.Number("data count", record.header.DataCount);
    codec.Number("reserved", record.header.Reserved[0]);
    codec.Number("reserved", record.header.Reserved[1]);
  }
};

struct WeftBlockHeader {
  static constexpr const char* kTitle = "mask download block header";
  static constexpr std::uint32_t kMagic = Magic("TFEW");
  static constexpr std::uint32_t kBodyMagic = Magic("DFEW");
  static constexpr std::uint32_t kBodyMagicSize = 4;

  std::uint32_t blockType = 0;
  std::uint32_t length = 0;  // of the body, its magic included; readers go by the type
  std::uint32_t valueCount = 0;
  std::uint32_t byteCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("block header size");
    codec.Number("block type", record.blockType);
    codec.Number("length", record.length);
    codec.Number("value count", record.valueCount);
    codec.Number("byte count", record.byteCount);
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
    codec.Number("fourth value", record.fourthValue);
    codec.Number("code A", record.codeA);
    codec.Number("code B", record.codeB);
    codec.Text("text", record.text, 160);
  }
};

static_assert(kRecordSize<WeftHeaderRecord> == 20);
static_assert(kRecordSize<WeftBlockHeader> == 24);
static_assert(kRecordSize<WeftOutputRecord> == 164);

}  // namespace nvx
