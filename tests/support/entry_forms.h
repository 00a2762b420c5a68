// One good form of each family of entries, written down by hand.
#pragma once

#include "support/byte_builder.h"
#include "support/curve_builder.h"
#include "support/media_builder.h"
#include "support/word_table.h"

#include <string_view>

namespace nvx::test {

inline ByteBuilder ModelRecord(std::uint32_t version, std::uint32_t cmyk = 1) {
  ByteBuilder record;
  record.Text("LDOM").U32(276, version, cmyk);
  record.Text("JV300", 64).Text("Inkset 4", 64).Text("Glossy", 64).Text("Fine", 64);
  return record;
}

inline ByteBuilder InfoRecord(std::uint32_t version = 0x00010000) {
  ByteBuilder record;
  record.Text("OFNI").U32(400, version, 0);
  record.Text("1.2.3", 64).Text("A comment", 64).Text("User", 64).Fill(0xA5, 192);
  return record;
}

inline ByteBuilder LutHeader(std::uint32_t inputs, std::uint32_t outputs, std::uint32_t grid) {
  return ByteBuilder().Text(" TUL").U32(280, 0x00010000, inputs, outputs, grid).Zero(256);
}

inline ByteBuilder LutChannel(std::uint32_t code, std::uint32_t attribute, std::string_view name) {
  return ByteBuilder().Text("HTUL").U32(336, code, attribute).Text(name, 320);
}

// 3 inputs, 4 outputs, grid 2; samples count upwards from 1. 2664 bytes.
inline ByteBuilder LutForm() {
  ByteBuilder form = LutHeader(3, 4, 2);
  for (const auto name : {"C", "M", "Y"}) form.Append(LutChannel(static_cast<std::uint8_t>(name[0]), 1, name));
  for (std::uint32_t i = 0; i < 4; ++i) form.Append(LutChannel(10 + i, 0x80000000u + i, "ink"));
  for (std::uint32_t i = 1; i <= 32; ++i) form.U8(i);
  return form;
}

inline ByteBuilder& Add(ByteBuilder& bytes, const Words& words) {
  for (const std::int32_t word : words) bytes.I32(word);
  return bytes;
}

// Two patterns of 14 words with blocks of 10 and 3 words.
inline const Words kParameterPatterns = {120, 0,                                              //
                                         70,  71, 1, 2,  3, 100,  0, 0, 0, 0, 8, 2, 11, 12,   //
                                         80,  81, 1, -1, 3, 1250, 0, 0, 0, 0, 1, 1, 21, 22};  //
inline const Words kParameterStore = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 200, 201, 202};

// A fixed table between two pattern tables.
inline Bytes LargeParameterForm() {
  ByteBuilder bytes;
  bytes.Text("MRAP").U32(16, 3, 0);
  bytes.Text("HMRP").U32(20, 2, 4 + 4 * 30 + 4 + 4 * 13, 2);
  bytes.Text("HMRP").U32(20, 1, 1060, 264);
  bytes.Text("HMRP").U32(20, 2, 4 + 4 * 30 + 4 + 4 * 13, 2);
  Add(Add(bytes.Text("HERP"), kParameterPatterns).Text("EMRP"), kParameterStore);
  bytes.Text("DMRP").U32(0, 0).I32(0, -1, -1).Zero(4 * 128).I32(1, -1, -1).Zero(4 * 128);
  return Add(Add(bytes.Text("HERP"), kParameterPatterns).Text("EMRP"), kParameterStore);
}

// Two patterns of three slots, and what they recommend. Two curve sets of 174 and 32 bytes.
inline const Words kColorPatterns = {80, 0, 2,    206,                 //
                                     0,  0, 1200, 5,   3, 3, 7,  0,    //
                                     0,  0, 1250, -1,  3, 3, -1, -1};  //
inline const Words kColorAdvice = {0, 0, 1, 40, 2,                     //
                                   0, 0, 3, 60, 0};

inline ByteBuilder SpecialColorHeader(std::uint32_t colorType, std::uint32_t count) {
  return ByteBuilder().Text("RCPS").U32(32, 1, 0, colorType, count).Zero(8);
}

inline ByteBuilder SpecialColorRecord(std::uint32_t usedType, std::uint32_t dataSize, std::uint32_t count) {
  return ByteBuilder().Text("HCPS").U32(20, usedType, dataSize, count);
}

inline Bytes SpecialColorArrays(const Words& first, const Words& second) {
  ByteBuilder bytes;
  return Add(Add(bytes.Text("HEPS"), first).Text("ECPS"), second);
}

constexpr std::uint32_t kColorDataSize = 4 + 80 + 4 + 40;

// A table with curve sets before one without.
inline Bytes SpecialColorForm() {
  ByteBuilder bytes = SpecialColorHeader(1, 2);
  bytes.Append(SpecialColorRecord(1, kColorDataSize, 2)).Append(SpecialColorRecord(1, 4 + 16 + 4 + 4, 0));
  bytes.Append(SpecialColorArrays(kColorPatterns, kColorAdvice));
  bytes.Append(CurveSetHeader(4, 1)).Append(CurveHeader({.ink = 9, .type = 2, .size = 6}));
  bytes.Text("SDEC").U16(1, 2, 0x1234).Append(CurveSetHeader(0, 0));
  return bytes.Append(SpecialColorArrays({16, 7, 0, 99}, {8}));
}

inline ByteBuilder MaskStreamHeader(std::uint32_t major, std::uint32_t minor, std::uint32_t count) {
  return ByteBuilder().U32(major, minor, count, 0, 0);
}

inline ByteBuilder MaskBlockHeader(std::uint32_t type, std::uint32_t length, std::uint32_t values,
                                   std::uint32_t bytes) {
  return ByteBuilder().Text("TFEW").U32(24, type, length, values, bytes);
}

// Blocks of types 4, 3 and 6: 20 + 3 * 24 + 16 + 8 + 168 bytes.
inline Bytes MaskDownloadForm(std::uint32_t third = 77, std::uint8_t output = 9) {
  ByteBuilder bytes = MaskStreamHeader(3, 0, 3);
  bytes.Append(MaskBlockHeader(4, 16, 3, 0)).Append(MaskBlockHeader(3, 8, 1, 0));
  bytes.Append(MaskBlockHeader(6, 168, 0, 164)).Text("DFEW").U32(1, 2, 0xFFFFFFFF);
  return bytes.Text("DFEW").U32(third).Text("DFEW").Fill(output, 164);
}

inline ByteBuilder MaskTableHeader(const char* magic, std::uint32_t count) {
  return ByteBuilder().Text(magic).U32(40, 1, 0, count).Zero(20);
}

// Two records, the second without a block: 40 + 2 * 136 + (4 + 5) + 4 bytes.
inline ByteBuilder MaskParameterForm() {
  ByteBuilder bytes = MaskTableHeader("HPPM", 2);
  bytes.Text("HRPM").U32(136, 0, 4, 2, 300);
  bytes.U32(3, 2, 5, 9).Zero(28);  // layer colours
  bytes.U32(5, 2, 5, 2).Zero(52);  // block size, pattern IDs
  bytes.Text("HRPM").U32(136, 0, 8, 2, 300).Zero(112);
  return bytes.Text("DEPM").Text("block").Text("DEPM");
}

// Three patterns, the second without a block: 40 + 3 * 40 + 3 * 4 + 5 bytes.
inline ByteBuilder MaskPatternForm() {
  ByteBuilder bytes = MaskTableHeader("HTPM", 3);
  for (const auto& [id, size] : {std::pair(3u, 3u), {5u, 0u}, {7u, 2u}})
    bytes.Text("HRPM").U32(40, 0, id, size).Zero(20);
  return bytes.Text("EDPM").Fill(3, 3).Text("EDPM").Text("EDPM").Fill(7, 2);
}

// Both inside one block; what is behind its magic counts with it.
inline Bytes MaskPatternsForm() {
  const Bytes parameters = MaskParameterForm();
  const Bytes patterns = MaskPatternForm();
  const auto size = static_cast<std::uint32_t>(4 + parameters.size() + patterns.size());
  ByteBuilder bytes = MaskStreamHeader(2, 0, 1);
  return bytes.Append(MaskBlockHeader(5, size, 0, 2)).Text("DFEW").Append(parameters).Append(patterns);
}

struct CalibrationHeader {
  std::uint32_t size = 0;  // of the buffer
  std::uint32_t usedType = 0;
  std::uint32_t formatType = 0;
  std::uint32_t complete = 0;
  std::uint32_t optionInfo = 0;
  std::int32_t value = 0;
  std::uint64_t time = 0;
  std::u16string_view name = {};
};

inline ByteBuilder& AddHeader(ByteBuilder& form, const CalibrationHeader& h) {
  form.Text("HEAC").U32(88, h.size + 4, h.usedType, h.formatType, h.complete, h.optionInfo);
  return form.I32(h.value).U64(h.time).Wide(h.name, 20).Zero(8);
}

inline ByteBuilder CalibrationFileHeader(std::uint32_t count, std::uint32_t option = 0) {
  return ByteBuilder().Text("ILAC").U32(20, 0x10000, count, option);
}

// Three levels: history, calibration, curve set.
inline Bytes HistoryForm(
    const Bytes& curves = CurveSetHeader(0, 1)
                              .Append(CurveHeader({.ink = 3, .extendInfo = 12, .type = 2, .size = 4}))
                              .Text("SDEC")
                              .U16(1, 0xFFFE)) {
  ByteBuilder calibration = CalibrationFileHeader(1);
  AddHeader(calibration, {static_cast<std::uint32_t>(curves.size()), 23, 6, 1});
  calibration.Text("DEAC").Append(curves);
  ByteBuilder form = CalibrationFileHeader(2, 8);
  AddHeader(form, {10, 21, 9, 1});
  AddHeader(form, {static_cast<std::uint32_t>(calibration.Size()), 20, 10, 0, 7, -5, 0x123456789A, u"first"});
  return form.Text("DEAC").U64(99).U16(0xABCD).Text("DEAC").Append(calibration);
}

}  // namespace nvx::test
