// Curves, and the bytes of curve sets written down by hand.
#pragma once

#include "support/byte_builder.h"

#include <nvxprofile/curve.h>

#include <initializer_list>
#include <memory>
#include <string_view>

namespace nvx::test {

inline std::unique_ptr<CCurveDataEntry> MakeCurve(CCurveDataEntry::typeData type, std::uint32_t ink,
                                                  std::initializer_list<std::uint32_t> samples,
                                                  std::uint32_t extendInfo = 0) {
  std::unique_ptr<CCurveDataEntry> curve(CCurveDataEntry::CreateCurveDataEntry(type));
  curve->SetInkID(ink);
  curve->SetExtendInfo(extendInfo);
  for (const std::uint32_t sample : samples) curve->Add(sample);
  return curve;
}

inline std::vector<std::uint32_t> SamplesOf(CCurveDataEntry& curve) {
  std::vector<std::uint32_t> samples(curve.GetCount());
  for (std::uint32_t i = 0; i < curve.GetCount(); ++i) curve.GetAt(i, samples[i]);
  return samples;
}

inline ByteBuilder CurveSetHeader(std::uint32_t usedType, std::uint32_t count) {
  return ByteBuilder().Text(" FCC").U32(32, 0x00010000, usedType, count).Zero(12);
}

struct CurveFields {
  std::uint32_t ink = 0;
  std::uint32_t slot = 0;
  std::uint32_t rgb = 0;
  std::uint32_t extendInfo = 0;
  std::uint32_t max = 0;
  std::uint32_t min = 0;
  std::uint32_t type = 1;
  std::uint32_t size = 0;
  std::string_view name = {};
};

inline Bytes CurveHeader(const CurveFields& f) {
  return ByteBuilder()
      .Text("IHEC")
      .U32(132, f.ink, f.slot, f.rgb, f.extendInfo, f.max, f.min, f.type, f.size)
      .Text(f.name, 92);
}

// Two curves: ink 1 with three 8-bit samples, ink 2 with two 16-bit samples. 311 bytes.
inline Bytes TwoCurves() {
  return CurveSetHeader(6, 2)
      .Append(CurveHeader({.ink = 1, .slot = 3, .rgb = 0xFF00, .max = 255, .type = 1, .size = 3, .name = "Cyan"}))
      .Append(CurveHeader({.ink = 2, .extendInfo = 7, .max = 65535, .min = 9, .type = 2, .size = 4, .name = "Black"}))
      .Text("SDEC")
      .U8(0, 0x80, 0xFF)
      .Text("SDEC")
      .U8(0x34, 0x12, 0xFF, 0xFE);
}

}  // namespace nvx::test
