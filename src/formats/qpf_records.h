// The records of the private tags; docs/formats/qpf.md draws them.
#pragma once

#include "core/record.h"

#include <nvxprofile/profile_info.h>

#include <array>
#include <cstdint>

namespace nvx {

// What every private tag opens with: an ICC tag of type "data" with the flag for binary data. Readers pass over it.
struct PrivateTagOpening {
  std::uint32_t type = Magic("data");
  std::uint32_t reserved = 0;
  std::uint32_t binary = SwapBytes(std::uint32_t{1});  // the one big-endian number

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("type", record.type);
    codec.Number("reserved", record.reserved);
    codec.Number("binary", record.binary);
  }
};

// What the header block of NVX1 holds beside the fields of the information record.
struct HeaderBlockWords {
  PrivateTagOpening opening;
  std::uint32_t version = 0;  // low half major, high half minor
  std::uint32_t entryCount = 0;

  std::uint32_t MajorVersion() const { return version & 0xFFFF; }
  std::uint32_t MinorVersion() const { return version >> 16; }
  void SetVersion(std::uint32_t major, std::uint32_t minor) { version = minor << 16 | major; }
};

// The header block of NVX1, described over the information record itself.
template <class Info, class Words, class Codec>
constexpr void DescribeHeaderBlock(Info& info, Words& words, Codec& codec) {
  auto& view = info.Binary;
  PrivateTagOpening::Describe(words.opening, codec);
  codec.Number("ModelNumber", view.ModelNumber);
  codec.Number("ModelSubNumber", view.ModelSubNumber);
  codec.Number("InternalNumber", view.InternalNumber);
  codec.Number("ColorsetCode", info.ColorsetCode);
  codec.Number("InkTypeCode", info.InkTypeCode);
  codec.Number("InkMakerCode", info.InkMakerCode);
  codec.Number("InkVersion", info.InkVersion);
  codec.Number("ScanResolution", info.ScanResolution);
  codec.Number("FeedResolution", info.FeedResolution);
  codec.Number("RenderingScan", info.RenderingScan);
  codec.Number("RenderingFeed", info.RenderingFeed);
  codec.Number("DotType", info.DotType);
  for (const int key : {2, 3, 4, 1, 5}) codec.Number("DatabaseKey", info.DatabaseKey[key - 1]);
  codec.Number("HalftoneCode", info.HalftoneCode);
  codec.Number("CreateTimeValue", info.CreateTimeValue);
  codec.Number("UpdateTimeValue", info.UpdateTimeValue);
  codec.Number("version word", words.version);
  codec.Number("entry count", words.entryCount);
  codec.Number("MediaNumber", view.MediaNumber);
  codec.Units("DefaultMediaName", view.DefaultMediaName, 64);
  codec.Units("CreateModule", view.CreateModule, 32);
  codec.Units("MakerText", view.MakerText, 32);
  codec.Units("revision code", view.StoredRevisionCode, 4);
  codec.Number("SeparateWayCode", info.SeparateWayCode);
  codec.Number("OutputThirdValue", info.OutputThirdValue);
  codec.Reserved(18);
}

inline constexpr RecordFields kHeaderBlockFields = [] {
  _tagDeviceProfileInfo info{};
  info.Binary = _tagDeviceProfileInfo::BinaryView{};
  const HeaderBlockWords words{};
  RecordFields fields;
  DescribeHeaderBlock(info, words, fields);
  return fields;
}();

inline constexpr auto kHeaderBlockSize = static_cast<std::uint32_t>(kHeaderBlockFields.Size());

// False, with both records as they were, if the stream ends early.
inline bool ReadHeaderBlock(CNvxFile& file, _tagDeviceProfileInfo& info, HeaderBlockWords& words) {
  std::array<std::uint8_t, kHeaderBlockSize> bytes;
  if (file.Read(bytes.data(), kHeaderBlockSize) != kHeaderBlockSize) return false;
  RecordDecoder decoder(bytes.data());
  DescribeHeaderBlock(info, words, decoder);
  return true;
}

inline bool WriteHeaderBlock(CNvxFile& file, const _tagDeviceProfileInfo& info, const HeaderBlockWords& words) {
  std::array<std::uint8_t, kHeaderBlockSize> bytes;
  RecordEncoder encoder(bytes.data());
  DescribeHeaderBlock(info, words, encoder);
  return file.Write(bytes.data(), kHeaderBlockSize) == kHeaderBlockSize;
}

// Head of the media name table in NVX2.
struct MediaTableHeader {
  PrivateTagOpening opening;
  std::uint32_t count = 0;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    PrivateTagOpening::Describe(record.opening, codec);
    codec.Number("count", record.count);
  }
};

struct MediaNameRecord {
  tagMedia media;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number("language", record.media.Language);
    codec.Units("name", record.media.Name, 64);
  }
};

static_assert(kRecordSize<PrivateTagOpening> == 12);
static_assert(kHeaderBlockSize == 400);
static_assert(kRecordSize<MediaTableHeader> == 16);
static_assert(kRecordSize<MediaNameRecord> == 130);

}  // namespace nvx
