// The records of the special colour form; docs/formats/special_color.md draws them.
#pragma once

#include "core/record.h"
#include "entries/word_table.h"

#include <nvxprofile/special_color.h>

namespace nvx {

struct SpecialColorHeader {
  static constexpr const char* kTitle = "special colour header";
  static constexpr std::uint32_t kMagic = Magic("RCPS");
  static constexpr std::uint32_t kRecordMagic = Magic("HCPS");
  static constexpr TwoArrayMagics kArrayMagics{Magic("HEPS"), Magic("ECPS")};

  std::uint32_t version = 1;
  std::uint32_t profileColorType = 0;
  std::int32_t recordCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("header size");
    codec.Number("version", record.version);
    codec.Reserved(4);
    codec.Number("profile colour type", record.profileColorType);
    codec.Number("record count", record.recordCount);
    codec.Reserved(8);
  }
};

static_assert(kRecordSize<SpecialColorHeader> == 32);

// The used type of a special colour table.
inline constexpr std::uint32_t kSpecialColorTable = 1;

// Words of array 0 that tell of the VD curves behind the arrays.
inline constexpr std::int64_t kCurveSetCountWord = 2;
inline constexpr std::int64_t kCurveSetBytesWord = 3;

}  // namespace nvx
