// The binary form of a curve set; docs/formats/curve_set.md draws it.
#pragma once

#include "core/record.h"
#include "core/stream.h"

#include <nvxprofile/curve.h>

#include <cstdint>
#include <optional>

template <class Self, class Codec>
constexpr void tagCurveFileHeader::Describe(Self& record, Codec& codec) {
  codec.Number(record.Signature);
  codec.Number(record.HeaderSize);
  codec.Number(record.Version);
  codec.Number(record.UsedType);
  codec.Number(record.EntryCount);
  codec.Reserved(12);
}

template <class Self, class Codec>
constexpr void CCurveFile::tagCurveEntryHeader::Describe(Self& record, Codec& codec) {
  codec.Number(record.Signature);
  codec.Number(record.HeaderSize);
  codec.Number(record.InkID);
  codec.Number(record.SlotNo);
  codec.Number(record.DisplayRGB);
  codec.Number(record.ExtendInfo);
  codec.Number(record.Max);
  codec.Number(record.Min);
  codec.Number(record.DataType);
  codec.Number(record.DataSize);
  codec.Text(record.InkName, 92);
}

namespace nvx {

using CurveRecord = CCurveFile::tagCurveEntryHeader;

static_assert(kRecordSize<tagCurveFileHeader> == 32);
static_assert(kRecordSize<CurveRecord> == 132);

// Stands before the samples of each curve.
inline constexpr std::uint32_t kCurveBlockMagic = Magic("SDEC");
inline constexpr std::uint32_t kCurveBlockMagicSize = 4;

// Bytes of the form of a set.
std::uint64_t CurveSetSize(CCurveData& set);

// Makes the set what the form at the start of the stream says, as emptying it and loading the form would; false in the
// same cases. Curves of an owned set that have the class and size that the form asks for are filled again where they
// are, so that a form of the same shape costs no allocation.
bool ReloadCurveSet(CNvxFile& file, CCurveData& set);

// The steps of a load.

// The header at the start of the stream; false for a wrong signature or version.
bool ReadCurveSetHeader(CNvxFile& file, tagCurveFileHeader& header);

// The records behind the header, all of them with the right signature.
class CurveTable {
 public:
  bool Read(CNvxFile& file, std::uint32_t count);
  std::uint32_t Count() const { return count_; }
  CurveRecord At(std::uint32_t index) const;

 private:
  std::optional<StreamBlock> bytes_;
  std::uint32_t count_ = 0;
};

// True if the stream stands at a data block that fits the record; it then stands at the samples.
bool EnterCurveBlock(CNvxFile& file, const CurveRecord& record);

// Gives a curve of the record's class the record's values, and the samples at which the stream stands.
bool ReadCurve(CNvxFile& file, const CurveRecord& record, CCurveDataEntry& curve);

// Between a curve and its record; signature and record size are left alone.
void FillRecord(CCurveDataEntry& curve, CurveRecord& record);
void ApplyRecord(const CurveRecord& record, CCurveDataEntry& curve);

}  // namespace nvx
