// Lamp tables, special colours and masks, built from conditions and values and asked as a print job asks.
#include "made_profile.h"
#include "support/byte_builder.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace nvx;
using namespace nvx::test;
using testing::ElementsAre;
using testing::HasSubstr;

nvx::LampPattern Pattern(std::array<Condition, 4> conditions, std::vector<std::vector<std::int32_t>> splits) {
  return {conditions, {{static_cast<std::int32_t>(splits.size()), -1}, std::move(splits), {}}};
}

TEST(ModernLamp, PatternsAnswerByCondition) {
  Profile profile = NewProfile();
  const auto any = Condition::Any();
  const std::vector<nvx::LampPattern> patterns{
      Pattern({Condition::Is(1), any, any, Condition::Hundred(3)}, {{11, 12}, {21, 22, 23}}),
      Pattern({any, any, Condition::Is(100), any}, {{31}}),
      Pattern({any, any, any, any}, {}),
  };
  profile.SetLampPatterns(patterns);
  EXPECT_TRUE(profile.Access().GetProfileInfo()->HasLargeParameter);
  Profile read = Again(profile);
  EXPECT_THAT(read.Lamp({1, 0, 0, 345})->splits, ElementsAre(ElementsAre(11, 12), ElementsAre(21, 22, 23)));
  EXPECT_THAT(read.Lamp({1, 0, 0, 345})->head, ElementsAre(2, -1));
  EXPECT_THAT(read.Lamp({2, 0, 100, 345})->splits, ElementsAre(ElementsAre(31)));
  EXPECT_TRUE(read.Lamp({2, 0, 101, 345})->splits.empty());
  const std::vector<nvx::LampPattern> back = read.LampPatterns();
  ASSERT_EQ(back.size(), patterns.size());
  for (std::size_t i = 0; i < back.size(); ++i) {
    EXPECT_EQ(back[i].conditions, patterns[i].conditions);
    EXPECT_EQ(back[i].settings.splits, patterns[i].settings.splits);
    EXPECT_TRUE(back[i].settings.rest.empty());
  }

  // The old queries say the same.
  CError error;
  std::uint32_t count = 0;
  ASSERT_TRUE(read.Access().GetUVLamp500ParamCount(count, 1, 0, 0, 345, &error));
  std::vector<std::int32_t> words(count);
  ASSERT_TRUE(read.Access().GetUVLamp500Parameter(words.data(), 1, 0, 0, 345, &error));
  EXPECT_THAT(words, ElementsAre(2, -1, 11, 12, 21, 22, 23));
  std::int32_t split = 0;
  EXPECT_TRUE(read.Access().GetUVLamp500SplitParamCount(split, 1, 1, 0, 0, 345, &error));
  EXPECT_EQ(split, 3);

  const std::array wrong{Pattern({Condition::Is(-2), any, any, any}, {})};
  EXPECT_THAT(WhatFails([&] { profile.SetLampPatterns(wrong); }), HasSubstr("condition"));
  EXPECT_EQ(profile.LampPatterns().size(), 3u);
}

// A table of the smallest records, byte for byte.
TEST(ModernLamp, Bytes) {
  Profile profile = NewProfile();
  profile.SetLampPatterns(
      std::array{Pattern({Condition::Is(1), Condition::Any(), Condition::Is(2), Condition::Any()}, {})});
  nvx::test::ByteBuilder form;
  form.Text("MRAP").U32(16, 1, 0).Text("HMRP").U32(20, 2, 8 + 4 * (2 + 12 + 2)).I32(1);
  form.Text("HERP").U32(4 * (2 + 12), 0).U32(0, 0).I32(1, -1, 2, -1).Zero(16).I32(0, 0);
  form.Text("EMRP").I32(0, -1);
  const auto bytes = profile.FindEntry(nvx::EntryKind::kLamp)->bytes;
  ASSERT_EQ(bytes.size(), 1024u);
  EXPECT_TRUE(std::equal(form.Take().begin(), form.Take().end(), bytes.begin()));
}

// A form that claims as many patterns as it has words: the blocks before each are not walked again and again.
TEST(ModernLamp, HostileTable) {
  constexpr std::uint32_t kWords = 300'000;
  nvx::test::ByteBuilder form;
  form.Text("MRAP").U32(16, 1, 0).Text("HMRP").U32(20, 2, 8 + 8 * kWords, kWords);
  form.Text("HERP").U32(4 * kWords).Zero(4 * kWords - 4).Text("EMRP").Zero(4 * kWords);
  Profile profile = NewProfile();
  profile.SetEntryBytes(nvx::EntryKind::kLamp, form.Take());
  const std::vector<nvx::LampPattern> patterns = profile.LampPatterns();
  EXPECT_EQ(patterns.size(), kWords);
  EXPECT_THAT(patterns[1].settings.head, ElementsAre(0, 0));
}

TEST(ModernLamp, FixedTable) {
  Profile profile = NewProfile();
  EXPECT_FALSE(profile.Lamp({0, 0, 0, 0}));
  nvx::LampSettings settings{{1, 2}, {std::vector<std::int32_t>(131, 5), std::vector<std::int32_t>(131, 6)}, {}};
  profile.SetFixedLamp(settings);
  const Profile read = Again(profile);
  EXPECT_TRUE(read.LampPatterns().empty());
  EXPECT_EQ(read.Lamp({9, 9, 9, 9})->splits, settings.splits);
  EXPECT_THAT(read.Lamp({9, 9, 9, 9})->head, ElementsAre(1, 2));
  settings.splits[0].pop_back();
  settings.splits[1].push_back(0);
  EXPECT_THAT(WhatFails([&] { profile.SetFixedLamp(settings); }), HasSubstr("131"));
}

TEST(ModernSpecialColors, RecommendationsByCondition) {
  Profile profile = NewProfile();
  const auto low = Ramp(1);
  const auto high = Ramp(2);
  nvx::SpecialColorTable table;
  table.profileColorType = 1;
  table.patterns = {
      {{Condition::Hundred(2), Condition::Is(4)}, {Condition::Is(7), Condition::Is(3)}, 0, 80, std::nullopt},
      {{Condition::Any(), Condition::Any()}, {Condition::Is(5)}, 2, 90, 1},
      {{Condition::Any(), Condition::Any()}, {Condition::Any(), Condition::Is(6)}, 3, 95, 0},
  };
  table.curveSets = {{CurveOfInk(6, 1, low)}, {CurveOfInk(5, 1, high), CurveOfInk(5, 2, low)}};
  profile.SetSpecialColors(table);
  EXPECT_EQ(profile.Info().separateWayCode, 3);
  Profile read = Again(profile);
  for (const auto& colors : {std::array{3, 7}, {7, 3}}) EXPECT_EQ(read.RecommendedLevel({299, 4}, colors), 0);
  EXPECT_EQ(read.RecommendedLevel({1, 1}, std::array{5}), 2);
  EXPECT_EQ(read.RecommendedLevel({1, 1}, std::array{6, 200}), 3);
  EXPECT_FALSE(read.RecommendedLevel({1, 1}, std::array{1, 2, 3}));
  EXPECT_EQ(read.RecommendedDensity({1, 1}, 5), 90);
  EXPECT_EQ(Words(read.VariableDotCurve({1, 1}, 5, 2)), low);
  EXPECT_FALSE(read.VariableDotCurve({1, 1}, 77, 0));

  const nvx::SpecialColorTable back = *read.SpecialColors();
  EXPECT_EQ(back.profileColorType, 1u);
  ASSERT_EQ(back.patterns.size(), 3u);
  EXPECT_THAT(back.patterns[0].colors, ElementsAre(Condition::Is(3), Condition::Is(7)));
  EXPECT_THAT(back.patterns[2].colors, ElementsAre(Condition::Is(6), Condition::Any()));
  EXPECT_EQ(back.patterns[1].curveSet, 1u);
  EXPECT_EQ(back.patterns[1].conditions, table.patterns[1].conditions);
  ASSERT_EQ(back.curveSets.size(), 2u);
  EXPECT_EQ(back.curveSets[1].size(), 2u);
  // What was read can be written, though its samples lie in what it replaces.
  read.SetSpecialColors(back);
  EXPECT_EQ(Words(read.VariableDotCurve({1, 1}, 5, 1)), high);

  const auto refused = [&](auto change) {
    nvx::SpecialColorTable wrong = table;
    change(wrong);
    return WhatFails([&] { profile.SetSpecialColors(wrong); });
  };
  EXPECT_THAT(refused([](auto& t) { t.patterns[0].curveSet = 2; }), HasSubstr("no such curve set"));
  EXPECT_THAT(refused([](auto& t) { t.patterns[0].level = INT32_MAX; }), HasSubstr("level"));
  EXPECT_THAT(refused([](auto& t) { t.patterns[0].colors = {Condition::Is(0)}; }), HasSubstr("colour"));
  const std::vector<std::uint16_t> shorter(3);
  EXPECT_THAT(refused([&](auto& t) { t.curveSets[1][1].samples = nvx::Samples16(shorter); }), HasSubstr("differ"));
}

TEST(ModernMasks, RulesAndPatterns) {
  Profile profile = NewProfile();
  EXPECT_FALSE(profile.Masks());
  nvx::MaskSet masks;
  masks.patterns = {{7, {1, 2, 3}}, {3, {9}}};
  masks.rules = {{{4, 0, 1, {2, 1}}, {0xAA, 0xBB}, {7, 3}}, {{8, 0, 1, {}}, {0xCC}, {}}};
  profile.SetMasks(masks);
  Profile read = Again(profile);
  const nvx::MaskSet back = *read.Masks();
  EXPECT_EQ(back.patterns, masks.patterns);
  ASSERT_EQ(back.rules.size(), 2u);
  EXPECT_THAT(back.rules[0].condition.layerColors, ElementsAre(1, 2));
  EXPECT_EQ(back.rules[0].parameters, masks.rules[0].parameters);
  EXPECT_EQ(back.rules[0].patterns, masks.rules[0].patterns);
  const auto packed = read.PackedMask({4, 0, 1, {5, 6}});
  ASSERT_TRUE(packed);
  CError error;
  std::uint32_t colors[] = {5, 6};
  EXPECT_EQ(packed->size(), read.Access().GetMaskParameterAndPatternBuffer(nullptr, 4, 0, 1, 2, colors, &error));
  EXPECT_FALSE(read.PackedMask({5, 0, 1, {}}));

  const std::array block{nvx::MaskBlock{3, {1}, {}}};
  EXPECT_THAT(WhatFails([&] { profile.SetMaskBlocks(block); }), HasSubstr("another entry"));
  masks.rules[0].patterns = {8};
  EXPECT_THAT(WhatFails([&] { profile.SetMasks(masks); }), HasSubstr("no pattern 8"));
  masks.rules[0].patterns = std::vector<std::uint32_t>(16, 7);
  EXPECT_THAT(WhatFails([&] { profile.SetMasks(masks); }), HasSubstr("cannot hold"));
  EXPECT_EQ(profile.Masks()->rules.size(), 2u);
}

TEST(ModernMasks, Blocks) {
  Profile profile = NewProfile();
  EXPECT_FALSE(profile.SupportsMaskVersion());
  std::vector<std::uint8_t> output(164, 3);
  profile.SetMaskBlocks(std::vector<nvx::MaskBlock>{{6, {}, output}, {3, {42}, {}}});
  Profile read = Again(profile);
  EXPECT_EQ(read.Info().minorVersion, 4u);
  EXPECT_EQ(read.Info().outputFourthValue, profile.Info().outputFourthValue);
  EXPECT_NE(read.Info().outputFourthValue, -1);
  EXPECT_EQ(read.FindMaskBlock(3)->values, std::vector<std::uint32_t>{42});
  EXPECT_EQ(read.MaskBlocks().front().bytes, output);
  EXPECT_FALSE(read.FindMaskBlock(4));
  EXPECT_TRUE(read.SupportsMaskVersion());
  EXPECT_TRUE(profile.RemoveEntry(nvx::EntryKind::kMaskBlocks));
  EXPECT_EQ(profile.Info().outputFourthValue, -1);
  EXPECT_EQ(Again(profile).Info().minorVersion, 0u);
  const std::array tooMany{nvx::MaskBlock{3, {1, 2}, {}}};
  EXPECT_THAT(WhatFails([&] { profile.SetMaskBlocks(tooMany); }), HasSubstr("has 1 values"));
  EXPECT_THAT(WhatFails([&] { profile.SetMaskBlocks(std::array{nvx::MaskBlock{7, {}, {}}}); }), HasSubstr("no such"));
}

}  // namespace
