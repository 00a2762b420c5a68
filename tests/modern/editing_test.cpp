// Changes: kept in step, whole or not at all.
#include "made_profile.h"

#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace nvx;
using namespace nvx::test;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::pair<int, int>> KeysOf(const std::vector<nvx::Curve>& curves) {
  std::vector<std::pair<int, int>> keys;
  for (const nvx::Curve& curve : curves) keys.emplace_back(curve.ink, curve.extendInfo);
  return keys;
}

using Key = std::pair<int, int>;

TEST(ModernCurves, ReplaceAppendAndRemove) {
  Profile profile = NewProfile();
  const auto low = Ramp(1);
  const auto high = Ramp(255);
  profile.SetCurve(CurveKind::kVariable, CurveOfInk(4, 1, low));
  profile.SetCurve(CurveKind::kVariable, CurveOfInk(4, 2, low));
  profile.SetCurve(CurveKind::kVariable, CurveOfInk(2, 1, low));
  profile.SetCurve(CurveKind::kVariable, CurveOfInk(4, 2, high));
  EXPECT_THAT(KeysOf(profile.Curves(CurveKind::kVariable)), ElementsAre(Key(4, 1), Key(4, 2), Key(2, 1)));
  EXPECT_EQ(Words(profile.Variable(4)), low);
  EXPECT_EQ(Words(profile.Variable(4, 2)), high);
  EXPECT_TRUE(profile.RemoveCurve(CurveKind::kVariable, 4, 1));
  EXPECT_FALSE(profile.RemoveCurve(CurveKind::kVariable, 4, 1));
  EXPECT_FALSE(profile.RemoveCurve(CurveKind::kUcr, 4, 1));
  EXPECT_THAT(KeysOf(profile.Curves(CurveKind::kVariable)), ElementsAre(Key(4, 2), Key(2, 1)));

  const nvx::Curve read = Again(profile).Curves(CurveKind::kVariable).front();
  EXPECT_EQ(std::tuple(read.slot, read.displayRgb, read.min, read.max, read.name),
            std::tuple(5u, 0x112233u, 17u, 65535u, "Ink"));

  // A set made of the profile's own curves.
  auto curves = profile.Curves(CurveKind::kVariable);
  std::swap(curves[0], curves[1]);
  profile.SetCurves(CurveKind::kVariable, curves);
  EXPECT_THAT(KeysOf(profile.Curves(CurveKind::kVariable)), ElementsAre(Key(2, 1), Key(4, 2)));
  EXPECT_EQ(Words(profile.Variable(4, 2)), high);
  const auto twice = {CurveOfInk(2, 1, low), CurveOfInk(2, 1, low)};
  EXPECT_THAT(WhatFails([&] { profile.SetCurves(CurveKind::kVariable, twice); }), HasSubstr("two curves of ink"));
}

TEST(ModernCurves, EachQueryHasItsEntry) {
  Profile profile = NewProfile();
  struct Case {
    CurveKind kind;
    std::uint8_t ink;
    std::uint32_t extendInfo;
    std::uint16_t step;
    std::optional<Samples> (*query)(const Profile&);
  };
  // Gray balance stays below the number of samples, for the merge.
  const std::vector<Case> cases{
      {CurveKind::kInkLimit, 1, 0, 3, [](const Profile& p) { return p.InkLimit(1); }},
      {CurveKind::kLinearization, 1, 0, 2, [](const Profile& p) { return p.Linearization(1); }},
      {CurveKind::kGrayBalance, 1, 0, 1, [](const Profile& p) { return p.GrayBalance(1); }},
      {CurveKind::kLightInk, 1, 0, 4, [](const Profile& p) { return p.LightInk(1); }},
      {CurveKind::kMultiInkLimit, 1, 7, 5, [](const Profile& p) { return p.MultiInkLimit(1, 7); }},
      {CurveKind::kVariableInkLimit, 1, 5, 6, [](const Profile& p) { return p.VariableInkLimit(1); }},
      {CurveKind::kUcr, 0, 2, 7, [](const Profile& p) { return p.UnderColorRemoval(); }},
      {CurveKind::kUcr, 0, 1, 8, [](const Profile& p) { return p.BlackGeneration(); }}};
  for (const Case& c : cases) profile.SetCurve(c.kind, CurveOfInk(c.ink, c.extendInfo, Ramp(c.step)));
  const Profile read = Again(profile);
  for (const Case& c : cases) EXPECT_EQ(Words(c.query(read)), Ramp(c.step));
  EXPECT_EQ(Words(read.MultiInkLimit(1)), Ramp(5));
  EXPECT_FALSE(read.MultiInkLimit(1, 6));
  EXPECT_EQ(std::get<std::vector<std::uint16_t>>(*read.MergedGrayBalance(1)), Ramp(2));
  EXPECT_FALSE(read.MergedGrayBalance(2));
  EXPECT_FALSE(read.InkLimit(2));
}

TEST(ModernCurves, RefusalsLeaveTheProfileAsItWas) {
  Profile profile = NewProfile();
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(1, 0, Ramp(3)));
  const Bytes before = BytesOf(profile, EntryKind::kInkLimit);
  const auto refused = [&](auto change) {
    const auto ramp = Ramp(1);
    nvx::Curve curve = CurveOfInk(1, 0, ramp);
    change(curve);
    const std::string what = WhatFails([&] { profile.SetCurve(CurveKind::kInkLimit, curve); });
    EXPECT_EQ(BytesOf(profile, EntryKind::kInkLimit), before);
    EXPECT_EQ(Words(profile.InkLimit(1)), Ramp(3));
    return what;
  };
  const std::vector<std::uint8_t> narrow(16, 1);
  EXPECT_THAT(refused([&](auto& c) { c.samples = Samples8(narrow); }), HasSubstr("16 bits"));
  EXPECT_THAT(refused([](auto& c) { c.name = std::string(92, 'x'); }), HasSubstr("longer than its 91"));
  EXPECT_THAT(refused([](auto& c) { c.name = "墨"; }), HasSubstr("ANSI code page"));

  // A kind that the file keeps elsewhere takes 8 bits.
  nvx::Curve curve = CurveOfInk(1, 0, {});
  curve.samples = Samples8(narrow);
  const std::uint32_t code = profile.AddCalibration({"", 0, At(1), {}, {curve}, {}});
  const auto read = Again(profile);
  const auto samples = read.CalibrationCurve(code, nvx::CalibrationCurves::kLinearization, 1);
  EXPECT_EQ(std::get<Samples8>(*samples).size(), 16u);
}

TEST(ModernCurves, AnEntryThatIsNotUnderstoodIsNotChangedInPart) {
  Bytes set = nvx::test::CurveSet(2, Bytes(8, 1));
  set.back() = 7;
  set.resize(set.size() - 2);
  Profile profile = Profile::FromBytes(PrinterFile({{2, 6, set}}), "a.icc");
  ASSERT_FALSE(profile.FindEntry(EntryKind::kInkLimit)->isUnderstood);
  const auto ramp = Ramp(1);
  EXPECT_THAT(WhatFails([&] { profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(2, 0, ramp)); }),
              HasSubstr("entry ink-limit"));
  EXPECT_EQ(BytesOf(Again(profile), EntryKind::kInkLimit), set);
  EXPECT_NE(WhatFails([&] { profile.SetEntryBytes(EntryKind::kLinearization, set); }), "");
  EXPECT_FALSE(profile.Has(EntryKind::kLinearization));
  profile.RemoveEntry(EntryKind::kInkLimit);
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(2, 0, ramp));
  EXPECT_EQ(Words(profile.InkLimit(2)), ramp);
}

TEST(ModernCurves, AChangedEntryKeepsItsHeaderAndItsPlace) {
  const auto curves = nvx::test::CurveSet(2, Bytes(8, 1));
  Profile profile =
      Profile::FromBytes(PrinterFile({{2, 6, curves, 0, 77, "label"}, {6, 6, curves, 1, 5, "other"}}), "a.icc");
  const auto ramp = Ramp(1);
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(9, 0, ramp));
  const Profile read = Again(profile);
  const std::vector<nvx::Entry> entries = read.Entries();
  ASSERT_GE(entries.size(), 2u);
  EXPECT_EQ(std::tuple(entries[0].kind, entries[0].name, entries[0].complete, entries[0].optionInfo, entries[0].label),
            std::tuple(EntryKind::kInkLimit, "ink-limit", false, 77u, "label"));
  EXPECT_EQ(entries[1].kind, EntryKind::kLinearization);
}

TEST(ModernTable, SeparationTable) {
  Profile profile = NewProfile();
  EXPECT_FALSE(profile.Table());
  std::vector<std::uint8_t> samples(3 * 3 * 3 * 4);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::uint8_t>(i);
  nvx::SeparationTable table;
  table.inputs = {{1, 5, "R"}, {2, 6, "G"}, {3, 7, "B"}};
  table.outputs = {{10, 0, "C"}, {11, 0, "M"}, {12, 0, "Y"}, {13, 9, "Größe"}};
  table.gridPoints = 3;
  table.samples = samples;
  profile.SetTable(table);
  const Profile read = Again(profile);
  const nvx::SeparationTable got = *read.Table();
  EXPECT_EQ(got.gridPoints, 3u);
  EXPECT_THAT(got.samples, testing::ElementsAreArray(samples));
  ASSERT_EQ(got.inputs.size(), 3u);
  EXPECT_EQ(std::tuple(got.inputs[1].attribute, got.outputs[3].code, got.outputs[3].name), std::tuple(6u, 13, "Größe"));

  // A table of the profile's own samples.
  nvx::SeparationTable own = *profile.Table();
  own.outputs[0].name = "Cyan";
  profile.SetTable(own);
  EXPECT_THAT(profile.Table()->samples, testing::ElementsAreArray(samples));

  table.samples = Samples8(samples).first(samples.size() - 1);
  EXPECT_THAT(WhatFails([&] { profile.SetTable(table); }), HasSubstr("one for each output at each node"));
  table.gridPoints = 70000;
  EXPECT_NE(WhatFails([&] { profile.SetTable(table); }), "");
  EXPECT_EQ(profile.Table()->outputs[0].name, "Cyan");
}

TEST(ModernMedia, Settings) {
  Profile profile = NewProfile();
  profile.SetMedia(MediaSetting::kHeater, std::array{40, 45, 50});
  profile.SetMedia(MediaSetting::kWave, std::array{-7});
  profile.SetMedia(MediaSetting::kPassMask, std::array{1, 2, 3, 4, 5, 6, 7, 8});
  profile.SetMedia(MediaSetting::kHeater, std::array{41, 46});
  const Profile read = Again(profile);
  EXPECT_THAT(*read.Media(MediaSetting::kHeater), ElementsAre(41, 46));
  EXPECT_THAT(*read.Media(MediaSetting::kWave), ElementsAre(-7));
  EXPECT_EQ(read.Media(MediaSetting::kPassMask)->size(), 8u);
  EXPECT_FALSE(read.Media(MediaSetting::kUvMode));
  // Blocks of types that nobody knows here stay as they are.
  const auto blocks = [&]() -> CMediaPropertyData& {
    return *dynamic_cast<CMediaPropertyEntry&>(*profile.Access().GetProfileData()->GetProfileDataEntryFromList(16))
                .GetMediaPropertyData();
  };
  blocks().AddTail(CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(12, 0));
  profile.SetMedia(MediaSetting::kFeedSpeed, std::array{9});
  EXPECT_TRUE(profile.RemoveMedia(MediaSetting::kWave));
  EXPECT_EQ(blocks().GetPropertyCount(), 4);
  EXPECT_FALSE(profile.RemoveMedia(MediaSetting::kWave));
  EXPECT_THAT(*profile.Media(MediaSetting::kHeater), ElementsAre(41, 46));
  EXPECT_THAT(WhatFails([&] { profile.SetMedia(MediaSetting::kWave, std::array{1, 2}); }), HasSubstr("not 2 values"));
  EXPECT_THAT(WhatFails([&] { profile.SetMedia(MediaSetting::kHeater, {}); }), HasSubstr("not 0 values"));
  EXPECT_THAT(WhatFails([&] { profile.SetMedia(static_cast<MediaSetting>(99), std::array{1}); }), HasSubstr("99"));
  EXPECT_THAT(WhatFails([&] { profile.SetMedia(MediaSetting::kHeater, std::vector<std::int32_t>(17)); }),
              HasSubstr("17"));

  profile.SetMedia(MediaSetting::kWaveForm, std::array{3});
  EXPECT_EQ(profile.Access().GetProfileInfo()->WaveFormParam, 3);
  profile.RemoveMedia(MediaSetting::kWaveForm);
  EXPECT_EQ(profile.Access().GetProfileInfo()->WaveFormParam, 0);
}

TEST(ModernCalibrations, AddFindAndRemove) {
  Profile profile = NewProfile();
  EXPECT_FALSE(profile.NewestCalibration());
  const auto ramp = Ramp(9);
  const std::uint32_t first = profile.AddCalibration({"old", 3, At(100), {CurveOfInk(1, 12, ramp)}, {}, {}});
  const std::uint32_t second = profile.AddCalibration({"new", 4, At(200), {}, {CurveOfInk(2, 0, ramp)}, {}});
  EXPECT_NE(first, second);
  Profile read = Again(profile);
  ASSERT_EQ(read.Calibrations().size(), 2u);
  EXPECT_EQ(std::pair(read.Calibrations()[0].name, read.Calibrations()[0].value), std::pair(std::string("old"), 3));
  EXPECT_EQ(std::pair(read.NewestCalibration()->code, read.NewestCalibration()->time), std::pair(second, At(200)));
  using nvx::CalibrationCurves;
  EXPECT_EQ(Words(read.CalibrationCurve(first, CalibrationCurves::kInkLimit, 1)), ramp);
  EXPECT_EQ(Words(read.CalibrationCurve(second, CalibrationCurves::kLinearization, 2)), ramp);
  EXPECT_FALSE(read.CalibrationCurve(first, CalibrationCurves::kGrayBalance, 1));
  EXPECT_FALSE(read.CalibrationCurve(0xFFFFFFFF, CalibrationCurves::kInkLimit, 1));
  EXPECT_EQ(read.CurvesOfCalibration(second, CalibrationCurves::kLinearization).size(), 1u);

  const nvx::CalibrationData tooLong{std::string(21, 'x'), 0, At(1), {}, {}, {}};
  EXPECT_THAT(WhatFails([&] { read.AddCalibration(tooLong); }), HasSubstr("calibration name"));
  EXPECT_TRUE(read.RemoveCalibration(first));
  EXPECT_FALSE(read.RemoveCalibration(first));
  EXPECT_EQ(read.Calibrations().size(), 1u);
  // Of equal times the first counts, and a time of 0 is none.
  Profile undated = NewProfile();
  undated.AddCalibration({"", 0, At(0), {}, {}, {}});
  EXPECT_FALSE(undated.NewestCalibration());
  const std::uint32_t early = undated.AddCalibration({"", 0, At(9), {}, {}, {}});
  undated.AddCalibration({"", 0, At(9), {}, {}, {}});
  EXPECT_EQ(undated.NewestCalibration()->code, early);
  // A code that was given once is not given again.
  EXPECT_GT(read.AddCalibration({"third", 0, At(1), {}, {}, {}}), second);
}

}  // namespace
