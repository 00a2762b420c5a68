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
    codec.Number(record.type);
    codec.Number(record.reserved);
    codec.Number(record.binary);
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
  codec.Number(view.ModelNumber);
  codec.Number(view.ModelSubNumber);
  codec.Number(view.InternalNumber);
  codec.Number(info.ColorsetCode);
  codec.Number(info.InkTypeCode);
  codec.Number(info.InkMakerCode);
  codec.Number(info.InkVersion);
  codec.Number(info.ScanResolution);
  codec.Number(info.FeedResolution);
  codec.Number(info.RenderingScan);
  codec.Number(info.RenderingFeed);
  codec.Number(info.DotType);
  for (const int key : {2, 3, 4, 1, 5}) codec.Number(info.DatabaseKey[key - 1]);
  codec.Number(info.HalftoneCode);
  codec.Number(info.CreateTimeValue);
  codec.Number(info.UpdateTimeValue);
  codec.Number(words.version);
  codec.Number(words.entryCount);
  codec.Number(view.MediaNumber);
  codec.Units(view.DefaultMediaName, 64);
  codec.Units(view.CreateModule, 32);
  codec.Units(view.MakerText, 32);
  codec.Units(view.StoredRevisionCode, 4);
  codec.Number(info.SeparateWayCode);
  codec.Number(info.OutputThirdValue);
  codec.Reserved(18);
}

inline constexpr std::uint32_t kHeaderBlockSize = [] {
  _tagDeviceProfileInfo info{};
  info.Binary = _tagDeviceProfileInfo::BinaryView{};
  const HeaderBlockWords words{};
  RecordSizer sizer;
  DescribeHeaderBlock(info, words, sizer);
  return static_cast<std::uint32_t>(sizer.Size());
}();

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
    codec.Number(record.count);
  }
};

struct MediaNameRecord {
  tagMedia media;

  template <class Self, class Codec>
  static constexpr void Describe(Self& record, Codec& codec) {
    codec.Number(record.media.Language);
    codec.Units(record.media.Name, 64);
  }
};

static_assert(kRecordSize<PrivateTagOpening> == 12);
static_assert(kHeaderBlockSize == 400);
static_assert(kRecordSize<MediaTableHeader> == 16);
static_assert(kRecordSize<MediaNameRecord> == 130);

}  // namespace nvx
