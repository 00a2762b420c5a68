// The records of the calibration form; docs/formats/calibration.md draws them.
#pragma once

#include "core/record.h"

namespace nvx {

struct CalibrationHeader {
  static constexpr const char* kTitle = "calibration header";
  static constexpr std::uint32_t kMagic = Magic("ILAC");
  static constexpr std::uint32_t kVersion = 0x00010000;

  std::uint32_t entryCount = 0;
  std::uint32_t optionValue = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("header size");
    codec.Constant("version", kVersion);
    codec.Number("entry count", record.entryCount);
    codec.Number("option value", record.optionValue);
  }
};

struct CalibrationEntryHeader {
  static constexpr const char* kTitle = "calibration entry header";
  static constexpr std::uint32_t kMagic = Magic("HEAC");
  static constexpr std::uint32_t kBodyMagic = Magic("DEAC");
  static constexpr std::uint32_t kBodyMagicSize = 4;

  std::uint32_t bodySize = kBodyMagicSize;  // buffer and body magic
  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  std::uint32_t complete = 0;
  std::uint32_t optionInfo = 0;
  std::int32_t value = 0;  // this and the next two for containers alone
  std::int64_t time = 0;
  char16_t name[21] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("record size");
    codec.Number("body size", record.bodySize);
    codec.Number("used type", record.usedType);
    codec.Number("format type", record.formatType);
    codec.Number("complete", record.complete);
    codec.Number("option info", record.optionInfo);
    codec.Number("value", record.value);
    codec.Number("time", record.time);
    codec.Text("name", record.name, 20);
    codec.Reserved(8);
  }
};

static_assert(kRecordSize<CalibrationHeader> == 20);
static_assert(kRecordSize<CalibrationEntryHeader> == 88);

}  // namespace nvx
