// Changes: kept in step, whole or not at all.
#include "made_profile.h"
#include "support/files.h"
#include "support/qpf_builder.h"

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
using Seconds = std::chrono::sys_seconds;

Seconds At(int seconds) { return Seconds(std::chrono::seconds(seconds)); }

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

  const nvx::Curve read = Profile::FromBytes(profile.ToBytes()).Curves(CurveKind::kVariable).front();
  EXPECT_EQ(read.slot, 5u);
  EXPECT_EQ(read.displayRgb, 0x112233u);
  EXPECT_EQ(read.max, 65535u);
  EXPECT_EQ(read.name, "Ink");

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
  const auto set = [&](CurveKind kind, std::uint8_t ink, std::uint32_t extendInfo, std::uint16_t step) {
    profile.SetCurve(kind, CurveOfInk(ink, extendInfo, Ramp(step)));
  };
  set(CurveKind::kInkLimit, 1, 0, 1);
  set(CurveKind::kLinearization, 1, 0, 2);
  set(CurveKind::kGrayBalance, 1, 0, 1);
  set(CurveKind::kLightInk, 1, 0, 4);
  set(CurveKind::kMultiInkLimit, 1, 7, 5);
  set(CurveKind::kVariableInkLimit, 1, 5, 6);
  set(CurveKind::kUcr, 0, 2, 7);
  set(CurveKind::kUcr, 0, 1, 8);
  const Profile read = Profile::FromBytes(profile.ToBytes());
  EXPECT_EQ(Words(read.InkLimit(1)), Ramp(1));
  EXPECT_EQ(Words(read.Linearization(1)), Ramp(2));
  EXPECT_EQ(Words(read.GrayBalance(1)), Ramp(1));
  EXPECT_EQ(Words(read.LightInk(1)), Ramp(4));
  EXPECT_EQ(Words(read.MultiInkLimit(1)), Ramp(5));
  EXPECT_EQ(Words(read.MultiInkLimit(1, 7)), Ramp(5));
  EXPECT_FALSE(read.MultiInkLimit(1, 6));
  EXPECT_EQ(Words(read.VariableInkLimit(1)), Ramp(6));
  EXPECT_EQ(Words(read.UnderColorRemoval()), Ramp(7));
  EXPECT_EQ(Words(read.BlackGeneration()), Ramp(8));
  EXPECT_EQ(std::get<std::vector<std::uint16_t>>(*read.MergedGrayBalance(1)), Ramp(2));
  EXPECT_FALSE(read.MergedGrayBalance(2));
  EXPECT_FALSE(read.InkLimit(2));
}

TEST(ModernCurves, RefusalsLeaveTheProfileAsItWas) {
  Profile profile = NewProfile();
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(1, 0, Ramp(3)));
  const Bytes before(profile.FindEntry(EntryKind::kInkLimit)->bytes.begin(),
                     profile.FindEntry(EntryKind::kInkLimit)->bytes.end());
  const auto refused = [&](auto change) {
    const auto ramp = Ramp(1);
    nvx::Curve curve = CurveOfInk(1, 0, ramp);
    change(curve);
    const std::string what = WhatFails([&] { profile.SetCurve(CurveKind::kInkLimit, curve); });
    const auto bytes = profile.FindEntry(EntryKind::kInkLimit)->bytes;
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), before.begin(), before.end()));
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
  const auto read = Profile::FromBytes(profile.ToBytes());
  const auto samples = read.CalibrationCurve(code, nvx::CalibrationCurves::kLinearization, 1);
  EXPECT_EQ(std::get<Samples8>(*samples).size(), 16u);
}

TEST(ModernCurves, AnEntryThatIsNotUnderstoodIsNotChangedInPart) {
  Bytes set = nvx::test::CurveSet(2, Bytes(8, 1));
  set.back() = 7;
  set.resize(set.size() - 2);
  const Bytes file = nvx::test::IccFile(
      {{"NVX1", nvx::test::EntryTag({{2, 6, set}, nvx::test::Placeholder()})}, {"NVX2", nvx::test::MediaTag({})}});
  Profile profile = Profile::FromBytes(file, "a.icc");
  ASSERT_FALSE(profile.FindEntry(EntryKind::kInkLimit)->isUnderstood);
  const auto ramp = Ramp(1);
  EXPECT_THAT(WhatFails([&] { profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(2, 0, ramp)); }),
              HasSubstr("entry ink-limit"));
  const Profile saved = Profile::FromBytes(profile.ToBytes("a.icc"), "a.icc");
  const auto bytes = saved.FindEntry(EntryKind::kInkLimit)->bytes;
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), set.begin(), set.end()));
  EXPECT_NE(WhatFails([&] { profile.SetEntryBytes(EntryKind::kLinearization, set); }), "");
  EXPECT_FALSE(profile.Has(EntryKind::kLinearization));
  profile.RemoveEntry(EntryKind::kInkLimit);
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(2, 0, ramp));
  EXPECT_EQ(Words(profile.InkLimit(2)), ramp);
}

TEST(ModernCurves, AChangedEntryKeepsItsHeaderAndItsPlace) {
  const auto curves = nvx::test::CurveSet(2, Bytes(8, 1));
  const Bytes file = nvx::test::IccFile(
      {{"NVX1",
        nvx::test::EntryTag({{2, 6, curves, 0, 77, "label"}, {6, 6, curves, 1, 5, "other"}, nvx::test::Placeholder()})},
       {"NVX2", nvx::test::MediaTag({})}});
  Profile profile = Profile::FromBytes(file, "a.icc");
  const auto ramp = Ramp(1);
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(9, 0, ramp));
  const std::vector<nvx::Entry> entries = Profile::FromBytes(profile.ToBytes("a.icc"), "a.icc").Entries();
  ASSERT_GE(entries.size(), 2u);
  EXPECT_EQ(entries[0].kind, EntryKind::kInkLimit);
  EXPECT_EQ(entries[0].name, "ink-limit");
  EXPECT_FALSE(entries[0].complete);
  EXPECT_EQ(entries[0].optionInfo, 77u);
  EXPECT_EQ(entries[0].label, "label");
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
  const Profile read = Profile::FromBytes(profile.ToBytes());
  const nvx::SeparationTable got = *read.Table();
  EXPECT_EQ(got.gridPoints, 3u);
  EXPECT_THAT(got.samples, testing::ElementsAreArray(samples));
  EXPECT_EQ(got.inputs.size(), 3u);
  EXPECT_EQ(got.inputs[1].attribute, 6u);
  EXPECT_EQ(got.outputs[3].code, 13);
  EXPECT_EQ(got.outputs[3].name, "Größe");

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
  const Profile read = Profile::FromBytes(profile.ToBytes());
  EXPECT_THAT(*read.Media(MediaSetting::kHeater), ElementsAre(41, 46));
  EXPECT_THAT(*read.Media(MediaSetting::kWave), ElementsAre(-7));
  EXPECT_EQ(read.Media(MediaSetting::kPassMask)->size(), 8u);
  EXPECT_FALSE(read.Media(MediaSetting::kUvMode));
  // Blocks of types that nobody knows here stay as they are.
  CMediaPropertyData& blocks =
      *dynamic_cast<CMediaPropertyEntry&>(*profile.Access().GetProfileData()->GetProfileDataEntryFromList(16))
           .GetMediaPropertyData();
  blocks.AddTail(CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(12, 0));
  profile.SetMedia(MediaSetting::kFeedSpeed, std::array{9});
  EXPECT_TRUE(profile.RemoveMedia(MediaSetting::kWave));
  EXPECT_EQ(dynamic_cast<CMediaPropertyEntry&>(*profile.Access().GetProfileData()->GetProfileDataEntryFromList(16))
                .GetMediaPropertyData()
                ->GetPropertyCount(),
            4);
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
  Profile read = Profile::FromBytes(profile.ToBytes());
  ASSERT_EQ(read.Calibrations().size(), 2u);
  EXPECT_EQ(read.Calibrations()[0].name, "old");
  EXPECT_EQ(read.Calibrations()[0].value, 3);
  EXPECT_EQ(read.NewestCalibration()->code, second);
  EXPECT_EQ(read.NewestCalibration()->time, At(200));
  using nvx::CalibrationCurves;
  EXPECT_EQ(Words(read.CalibrationCurve(first, CalibrationCurves::kInkLimit, 1)), ramp);
  EXPECT_EQ(Words(read.CalibrationCurve(second, CalibrationCurves::kLinearization, 2)), ramp);
  EXPECT_FALSE(read.CalibrationCurve(first, CalibrationCurves::kGrayBalance, 1));
  EXPECT_FALSE(read.CalibrationCurve(0xFFFFFFFF, CalibrationCurves::kInkLimit, 1));
  EXPECT_EQ(read.CurvesOfCalibration(second, CalibrationCurves::kLinearization).size(), 1u);

  EXPECT_THAT(WhatFails([&] {
                read.AddCalibration({std::string(21, 'x'), 0, At(1), {}, {}, {}});
              }),
              HasSubstr("calibration name"));
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
