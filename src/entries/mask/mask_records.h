// The records of the mask parameter list and the mask pattern table; docs/formats/mask.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/mask.h>

namespace nvx {

// What precedes the bytes of a data block.
inline constexpr std::uint32_t kMaskParameterBlockMagic = Magic("DEPM");
inline constexpr std::uint32_t kMaskPatternBlockMagic = Magic("EDPM");
inline constexpr std::uint32_t kMaskBlockMagicSize = 4;

// The magic of a record, the same in both forms.
inline constexpr std::uint32_t kMaskRecordMagic = Magic("HRPM");

// The header, which differs between the two forms in its magic alone.
template <std::uint32_t kMagic>
struct MaskFileHeader {
  static constexpr const char* kTitle = "mask header";

  std::uint32_t version = 1;
  std::uint32_t recordCount = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMagic);
    codec.OwnSize("header size");
    codec.Number("version", record.version);
    codec.Reserved(4);
    codec.Number("record count", record.recordCount);
    codec.Reserved(20);
  }
};

using MaskParameterHeader = MaskFileHeader<Magic("HPPM")>;
using MaskPatternHeader = MaskFileHeader<Magic("HTPM")>;

struct MaskParameterRecord {
  std::uint32_t pass = 0;
  std::uint32_t specialColorsetCode = 0;
  std::uint32_t printMethod = 0;
  std::uint32_t layerColorCount = 0;
  std::uint32_t layerColors[CMaskParameterFile::kMostLayerColors] = {};
  std::uint32_t dataSize = 0;
  std::uint32_t usePatternIDCount = 0;
  std::uint32_t usePatternIDs[CMaskParameterFile::kMostUsePatternIDs] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMaskRecordMagic);
    codec.OwnSize("record size");
    codec.Reserved(4);
    codec.Number("pass", record.pass);
    codec.Number("special colourset code", record.specialColorsetCode);
    codec.Number("print method", record.printMethod);
    codec.Number("layer colour count", record.layerColorCount);
    for (auto& color : record.layerColors) codec.Number("layer colours", color);
    codec.Number("parameter data size", record.dataSize);
    codec.Number("use pattern ID count", record.usePatternIDCount);
    for (auto& id : record.usePatternIDs) codec.Number("use pattern IDs", id);
  }
};

struct MaskPatternRecord {
  std::uint32_t id = 0;
  std::uint32_t patternSize = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("magic", kMaskRecordMagic);
    codec.OwnSize("record size");
    codec.Reserved(4);
    codec.Number("mask pattern ID", record.id);
    codec.Number("mask pattern size", record.patternSize);
    codec.Reserved(20);
  }
};

static_assert(kRecordSize<MaskParameterHeader> == 40);
static_assert(kRecordSize<MaskParameterRecord> == 136);
static_assert(kRecordSize<MaskPatternRecord> == 40);

}  // namespace nvx
