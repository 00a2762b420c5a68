// The records of the entry-table container; docs/formats/container.md draws them.
#pragma once

#include "core/record.h"

namespace nvx {

struct ContainerHeader {
  static constexpr const char* kTitle = "container header";
  static constexpr std::uint32_t kMagic = 0x51435420;
  static constexpr std::uint32_t kVersion = 0x00010000;

  std::uint32_t targetType = 0;
  std::uint32_t route = 0;
  std::uint32_t deviceType = 0;
  std::uint32_t entryCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("header size");
    codec.Constant("version", kVersion);
    codec.Number("target type", record.targetType);
    codec.Number("route", record.route);
    codec.Number("device type", record.deviceType);
    codec.Number("entry count", record.entryCount);
    codec.Reserved(4);
  }
};

struct ContainerEntryHeader {
  static constexpr const char* kTitle = "entry header";
  static constexpr std::uint32_t kMagic = Magic("IHEP");
  static constexpr std::uint32_t kBodyMagic = Magic("SDEP");
  static constexpr std::uint32_t kBodyMagicSize = 4;

  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  std::uint32_t bodySize = kBodyMagicSize;  // buffer and body magic
  std::uint32_t complete = 0;
  std::uint32_t optionInfo = 0;
  char label[256] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("record size");
    codec.Number("used type", record.usedType);
    codec.Number("format type", record.formatType);
    codec.Number("body size", record.bodySize);
    codec.Number("complete", record.complete);
    codec.Number("option info", record.optionInfo);
    codec.Text("label", record.label, 256);
    codec.Reserved(8);
  }
};

static_assert(kRecordSize<ContainerHeader> == 32);
static_assert(kRecordSize<ContainerEntryHeader> == 292);

}  // namespace nvx
