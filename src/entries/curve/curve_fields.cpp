#include "core/byte_order.h"
#include "entries/entry_fields.h"

#include <nvxprofile/curve_entry.h>

#include <memory>

namespace nvx {
namespace {

using Curve = CCurveDataEntry;

constexpr Field kDataType = {
    .name = "dataType", .presence = Presence::kOptional, .values = {Curve::kSamples8, Curve::kSamples16}};
constexpr Field kSamples = {.name = "samples", .isBulk = true};

// Samples are told as the form of the curve says them: bytes that count as 16-bit samples make samples, if they are
// even.
void TellSamples(FieldCodec& codec, Curve& curve) {
  const void* const samples = curve.GetRefBuffer();
  const std::uint32_t count = curve.GetCount();
  const bool areBytes = curve.GetSize() == count;
  if (!areBytes) return codec.Tell(kSamples, std::span(static_cast<const std::uint16_t*>(samples), count));
  const std::span bytes(static_cast<const std::uint8_t*>(samples), count);
  if (curve.GetDataType() != Curve::kSamples16 || count % 2 != 0) return codec.Tell(kSamples, bytes);
  std::vector<std::uint16_t> made(count / 2);
  for (std::size_t i = 0; i < made.size(); ++i) made[i] = LoadLittle<std::uint16_t>(&bytes[2 * i]);
  codec.Tell(kSamples, std::span<const std::uint16_t>(made));
}

void FillSamples(FieldCodec& codec, Curve& curve) {
  Field field = kSamples;
  field.values = {0, static_cast<std::int64_t>(curve.GetMaxBitValue())};
  std::vector<std::uint16_t> samples;
  codec.Numbers(field, samples);
  for (const std::uint16_t sample : samples) curve.Add(sample);
}

void DescribeCurve(FieldCodec& codec, Curve& curve) {
  codec.Number({.name = "inkID", .values = kOneByte}, curve, &Curve::GetInkID, &Curve::SetInkID);
  codec.Text({.name = "inkName", .presence = Presence::kOptional, .count = {0, Curve::kInkNameLength - 1}}, curve,
             &Curve::GetInkName, &Curve::SetInkName);
  codec.Number({"slotNo", Presence::kOptional}, curve, &Curve::GetSlotNo, &Curve::SetSlotNo);
  codec.Number({"displayRGB", Presence::kOptional}, curve, &Curve::GetDisplayRGB, &Curve::SetDisplayRGB);
  codec.Number({"extendInfo", Presence::kOptional}, curve, &Curve::GetExtendInfo, &Curve::SetExtendInfo);
  codec.Number({"max", Presence::kOptional}, curve, &Curve::GetMax, &Curve::SetMax);
  codec.Number({"min", Presence::kOptional}, curve, &Curve::GetMin, &Curve::SetMin);
  codec.Number(kDataType, curve, &Curve::GetDataType, &Curve::SetDataType);
  codec.Fills() ? FillSamples(codec, curve) : TellSamples(codec, curve);
}

// Ink and samples are what a curve needs; all else has the value of a new curve of 16-bit samples.
std::unique_ptr<Curve> MakeCurve(FieldCodec& codec) {
  std::uint32_t type = Curve::kSamples16;
  codec.Number(kDataType, type);
  std::unique_ptr<Curve> curve(Curve::CreateCurveDataEntry(static_cast<Curve::typeData>(type)));
  curve->SetMax(static_cast<std::uint32_t>(curve->GetMaxBitValue()));
  DescribeCurve(codec, *curve);
  return curve;
}

}  // namespace

void DescribeCurveSet(FieldCodec& codec, CCurveData& set, std::uint32_t usedType) {
  if (codec.Fills()) {
    set.DeleteContents();
    set.SetUsedType(usedType);
  }
  codec.Number({"usedType", Presence::kOptional}, set, &CCurveData::GetUsedType, &CCurveData::SetUsedType);
  codec.Groups(
      {"curves"}, set.Curves(), [&](Curve* curve) { DescribeCurve(codec, *curve); },
      [&](std::size_t) { set.AddTail(MakeCurve(codec).release()); });
}

void Describe(FieldCodec& codec, CProfileCurveEntry& entry) {
  using Entry = CProfileCurveEntry;
  DescribeCurveSet(codec, codec.PayloadOf(entry, &Entry::GetCurveData, &Entry::GetCurveData), entry.GetUsedType());
  codec.Rebuild(entry, "the curves are too many for one entry");
}

}  // namespace nvx
