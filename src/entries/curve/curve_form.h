// The binary form of a curve set; docs/formats/curve_set.md draws it.
#pragma once

#include "core/form.h"

#include <nvxprofile/curve.h>

#include <cstdint>
#include <memory>
#include <optional>

template <class Self, class Codec>
constexpr void tagCurveFileHeader::Describe(Self& record, Codec& codec) {
  codec.Constant("signature", kSignature, record.Signature);
  codec.Number("header size", record.HeaderSize);
  codec.Constant("version", kVersion, record.Version);
  codec.Number("used type", record.UsedType);
  codec.Number("entry count", record.EntryCount);
  codec.Reserved(12);
}

template <class Self, class Codec>
constexpr void CCurveFile::tagCurveEntryHeader::Describe(Self& record, Codec& codec) {
  codec.Constant("signature", kSignature, record.Signature);
  codec.Number("header size", record.HeaderSize);
  codec.Number("InkID", record.InkID);
  codec.Number("SlotNo", record.SlotNo);
  codec.Number("DisplayRGB", record.DisplayRGB);
  codec.Number("ExtendInfo", record.ExtendInfo);
  codec.Number("Max", record.Max);
  codec.Number("Min", record.Min);
  codec.Number("DataType", record.DataType);
  codec.Number("data size", record.DataSize);
  codec.Text("ink name", record.InkName, sizeof record.InkName);
}

namespace nvx {

using CurveRecord = CCurveFile::tagCurveEntryHeader;

template <>
inline constexpr const char* kTitle<tagCurveFileHeader> = "curve set header";
template <>
inline constexpr const char* kTitle<CurveRecord> = "curve record";

static_assert(kRecordSize<tagCurveFileHeader> == 32);
static_assert(kRecordSize<CurveRecord> == 132);

// Stands before the samples of each curve.
inline constexpr std::uint32_t kCurveBlockMagic = Magic("SDEC");
inline constexpr std::uint32_t kCurveBlockMagicSize = 4;

// Bytes of the name in a record.
inline constexpr std::uint32_t kCurveNameSize = sizeof(CurveRecord::InkName);

// Makes the set what the form at the start of the block says, as emptying it and loading the form would; false in the
// same cases. Curves of an owned set that have the class and size that the form asks for are filled again where they
// are, so that a form of the same shape costs no allocation.
bool ReloadCurveSet(CNvxMemFile& file, CCurveData& set);

// The steps of a load.

// The header at the start of the stream; false for a wrong signature or version.
bool ReadCurveSetHeader(CNvxFile& file, tagCurveFileHeader& header);

// The records behind the header, all of them with the right signature.
class CurveTable : public RecordTable<CurveRecord> {
 public:
  bool Read(CNvxFile& file, std::uint32_t count);
  // A record in two halves: without its name, and the field of the name, which need not be terminated.
  CurveRecord NumbersAt(std::uint32_t index) const;
  const char* NameFieldAt(std::uint32_t index) const;
};

// The rule that a record or its data block breaks, null for none: `signature` is what stands before the samples, `left`
// the bytes that the stream holds behind it.
const char* CurveFault(const CurveRecord& record, std::uint32_t signature, std::uint32_t left);

// True if the samples of a record are held as bytes: those of 8 bits, and those of 16 bits in an odd number of bytes,
// of which a curve of 16-bit samples would lose the last.
bool HoldsBytes(const CurveRecord& record);

// True if a reader knows the curve's DataType.
bool HasKnownType(const CCurveDataEntry* curve);

// A curve of the record's class, without values. Its DataType must be known.
std::unique_ptr<CCurveDataEntry> MakeCurve(const CurveRecord& record);

// Copies the samples of a curve from the form to its array, which has room for them.
void LoadSamples(const CurveRecord& record, const std::uint8_t* samples, void* array);

// Between a curve and its record; signature and record size are left alone, and ApplyNumbers leaves the name.
void FillRecord(CCurveDataEntry& curve, CurveRecord& record);
void ApplyNumbers(const CurveRecord& record, CCurveDataEntry& curve);
inline void ApplyRecord(const CurveRecord& record, CCurveDataEntry& curve) {
  ApplyNumbers(record, curve);
  curve.SetInkName(record.InkName);
}

}  // namespace nvx
