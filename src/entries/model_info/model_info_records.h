// The model record and the info record; docs/formats/model_info.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/model_info.h>

namespace nvx {

inline constexpr std::size_t kRecordTextWidth = 64;

struct ModelRecord {
  static constexpr const char* kTitle = "model record";
  static constexpr std::uint32_t kMagic = Magic("LDOM");
  static constexpr std::uint32_t kVersion = 0x00010002;
  // Ends before the VD type.
  static constexpr std::uint32_t kShortVersion = 0x00010000;

  std::uint32_t version = kVersion;
  std::uint32_t cmykMode = 0;
  char modelName[kRecordTextWidth] = {};
  char inksetName[kRecordTextWidth] = {};
  char mediaName[kRecordTextWidth] = {};
  char parametersetName[kRecordTextWidth] = {};
  std::uint32_t vdType = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    codec.OwnSize("record size");
    codec.Number("version", record.version);
    codec.Number("CMYK mode", record.cmykMode);
    codec.Text("model name", record.modelName, kRecordTextWidth);
    codec.Text("inkset name", record.inksetName, kRecordTextWidth);
    codec.Text("media name", record.mediaName, kRecordTextWidth);
    codec.Text("parameter set name", record.parametersetName, kRecordTextWidth);
    codec.Number("VD type", record.vdType);
  }
};

struct InfoRecord {
  static constexpr const char* kTitle = "info record";
  static constexpr std::uint32_t kMagic = Magic("OFNI");
  static constexpr std::uint32_t kVersion = 0x00010000;

  char versionStr[kRecordTextWidth] = {};
  char comment[kRecordTextWidth] = {};
  char userName[kRecordTextWidth] = {};
  std::uint8_t reserve[CInfoData::kReserveSize] = {};

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Constant("signature", kMagic);
    codec.OwnSize("record size");
    codec.Constant("version", kVersion);
    codec.Reserved(4);
    codec.Text("version string", record.versionStr, kRecordTextWidth);
    codec.Text("comment", record.comment, kRecordTextWidth);
    codec.Text("user name", record.userName, kRecordTextWidth);
    codec.Bytes("reserve buffer", record.reserve, CInfoData::kReserveSize);
  }
};

static_assert(kRecordSize<ModelRecord> == CModelFile::kRecordSize);
static_assert(kRecordSize<InfoRecord> == CInfoFile::kRecordSize);

}  // namespace nvx
