// The records of the entry-table container; docs/formats/container.md draws them.
#pragma once

#include "core/record.h"

namespace nvx {

struct ContainerHeader {
  static constexpr std::uint32_t kMagic = 0x51435420;
  static constexpr std::uint32_t kVersion = 0x00010000;

  std::uint32_t magic = kMagic;
  std::uint32_t headerSize = 32;
  std::uint32_t version = kVersion;
  std::uint32_t targetType = 0;
  std::uint32_t route = 0;
  std::uint32_t deviceType = 0;
  std::uint32_t entryCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number(record.magic);
    codec.Number(record.headerSize);
    codec.Number(record.version);
    codec.Number(record.targetType);
    codec.Number(record.route);
    codec.Number(record.deviceType);
    codec.Number(record.entryCount);
    codec.Reserved(4);
  }
};

struct ContainerEntryHeader {
  static constexpr std::uint32_t kMagic = Magic("IHEP");
  static constexpr std::uint32_t kBodyMagic = Magic("SDEP");
  static constexpr std::uint32_t kBodyMagicSize = 4;

  std::uint32_t magic = kMagic;
  std::uint32_t recordSize = 292;
  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  std::uint32_t bodySize = kBodyMagicSize;  // buffer and body magic
  std::uint32_t complete = 0;
  std::uint32_t optionInfo = 0;
  char label[256] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number(record.magic);
    codec.Number(record.recordSize);
    codec.Number(record.usedType);
    codec.Number(record.formatType);
    codec.Number(record.bodySize);
    codec.Number(record.complete);
    codec.Number(record.optionInfo);
    codec.Text(record.label, 256);
    codec.Reserved(8);
  }
};

static_assert(kRecordSize<ContainerHeader> == 32);
static_assert(kRecordSize<ContainerEntryHeader> == 292);

}  // namespace nvx
