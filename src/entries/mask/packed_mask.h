// The form in which a parameter block and its patterns go to the printer; docs/formats/packed_mask.md draws it.
#pragma once

#include "core/record.h"

namespace nvx {

struct PackedMaskHeader {
  std::uint16_t parameterSize = 0;
  std::uint8_t patternCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("parameter block size", record.parameterSize);
    codec.Number("pattern count", record.patternCount);
  }
};

struct PackedPatternHeader {
  std::uint16_t id = 0;
  std::uint32_t size = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("ID", record.id);
    codec.Number("size", record.size);
  }
};

static_assert(kRecordSize<PackedMaskHeader> == 3);
static_assert(kRecordSize<PackedPatternHeader> == 6);

}  // namespace nvx
