// The records of a colour table; docs/formats/lut.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/lut.h>

#include <cstdint>
#include <optional>

namespace nvx {

struct LutHeader {
  static constexpr const char* kTitle = "colour table";
  static constexpr std::uint32_t kMagic = Magic(" TUL");
  static constexpr std::uint32_t kVersion = 0x00010000;

  std::uint32_t inputChannels = 0;
  std::uint32_t outputChannels = 0;
  std::uint32_t gridCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    codec.OwnSize("header size");
    codec.Constant("version", kVersion);
    codec.Number("input channel count", record.inputChannels);
    codec.Number("output channel count", record.outputChannels);
    codec.Number("grid count", record.gridCount);
    codec.Reserved(256);
  }
};

struct LutChannelHeader {
  static constexpr const char* kTitle = "channel header";
  static constexpr std::uint32_t kMagic = Magic("HTUL");
  static constexpr std::size_t kNameWidth = 320;

  std::uint32_t channelCode = 0;
  std::uint32_t channelAttribute = 0;
  char channelName[kNameWidth + 1] = {};  // the whole field, also one without a terminator

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    codec.OwnSize("header size");
    codec.Number("channel code", record.channelCode);
    codec.Number("channel attribute", record.channelAttribute);
    codec.Text("channel name", record.channelName, kNameWidth);
  }
};

static_assert(kRecordSize<LutHeader> == 280);
static_assert(kRecordSize<LutChannelHeader> == 336);

}  // namespace nvx
