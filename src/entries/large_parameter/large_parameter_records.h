// The records of the large parameter form; docs/formats/large_parameter.md draws them.
#pragma once

#include "core/record.h"
#include "entries/word_table.h"

#include <nvxprofile/large_parameter.h>

namespace nvx {

struct LargeParameterHeader {
  static constexpr const char* kTitle = "large parameter header";
  static constexpr std::uint32_t kMagic = Magic("MRAP");
  static constexpr std::uint32_t kRecordMagic = Magic("HMRP");
  static constexpr std::uint32_t kFixedMagic = Magic("DMRP");                    // before the array of used type 1
  static constexpr TwoArrayMagics kPatternMagics{Magic("HERP"), Magic("EMRP")};  // before those of used type 2

  std::int32_t recordCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("header size");
    codec.Number("record count", record.recordCount);
    codec.Reserved(4);
  }
};

static_assert(kRecordSize<LargeParameterHeader> == 16);

// Used types of the tables.
inline constexpr std::uint32_t kFixedTable = 1;
inline constexpr std::uint32_t kPatternTable = 2;

}  // namespace nvx
