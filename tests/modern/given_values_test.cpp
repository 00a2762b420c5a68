// What is given to a profile is what it says from then on, or is refused.
#include "made_profile.h"
#include "support/environment.h"
#include "support/files.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

using namespace nvx;
using namespace nvx::test;
using testing::HasSubstr;
using testing::SizeIs;
using Seconds = std::chrono::sys_seconds;

TEST(ModernGivenValues, ACurveWithoutSamplesKeepsItsWidth) {
  Profile profile = NewProfile();
  profile.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, {}));
  Profile again = Again(profile);
  for (Profile* const each : {&profile, &again}) {
    const std::vector<nvx::Curve> curves = each->Curves(CurveKind::kLinearization);
    ASSERT_THAT(curves, SizeIs(1));
    EXPECT_TRUE(std::holds_alternative<Samples16>(curves[0].samples));
    each->SetCurves(CurveKind::kLinearization, curves);
  }
}

// The names are no text in the code page in which they are read later.
TEST(ModernGivenValues, TextOfAnotherCodePageOutlivesOtherChanges) {
  const std::string name = "Gr\xfcn";
  Profile profile = NewProfile();
  SeparationTable table;
  {
    const ScopedVariable western("NVXPROFILE_CODEPAGE", "1252");
    const auto ramp = Ramp(1);
    nvx::Curve curve = CurveOfInk(1, 0, ramp);
    curve.name = "Grün";
    profile.SetCurve(CurveKind::kLinearization, curve);
    profile.SetCurve(CurveKind::kVariable, curve);
    const std::vector<std::uint8_t> samples{1, 2};
    table = {{{1, 0, "Grün"}}, {{2, 0, "Grün"}}, 2, samples};
    profile.SetTable(table);
  }
  const ScopedVariable japanese("NVXPROFILE_CODEPAGE", "932");
  const auto samples = Ramp(2);
  nvx::Curve changed = profile.Curves(CurveKind::kLinearization).front();
  changed.samples = Samples16(samples);
  profile.SetCurve(CurveKind::kLinearization, changed);
  profile.SetCurves(CurveKind::kVariable, std::vector{changed});
  const std::vector<std::uint8_t> other{3, 4};
  table = *profile.Table();
  table.samples = other;
  profile.SetTable(table);

  const Profile again = Again(profile);
  EXPECT_EQ(Words(again.Linearization(1)), samples);
  for (const EntryKind kind : {EntryKind::kLinearization, EntryKind::kVariable, EntryKind::kSeparationTable}) {
    const std::span<const std::uint8_t> bytes = again.FindEntry(kind)->bytes;
    EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr(name));
  }
  changed.name = "Grün";
  EXPECT_THAT(WhatFails([&] { profile.SetCurve(CurveKind::kLinearization, changed); }), HasSubstr("code page"));
}

TEST(ModernGivenValues, TheRecordSaysWhatAFileOfItWould) {
  Profile profile = NewProfile();
  nvx::ProfileInfo info = profile.Info();
  info.created = Seconds(std::chrono::seconds(5));
  info.revision = "A";
  profile.SetInfo(info);
  info.created.reset();
  info.revision.clear();
  profile.SetInfo(info);
  EXPECT_FALSE(profile.Info().created);
  EXPECT_EQ(profile.Info().revision, Again(profile).Info().revision);
  info.created = Seconds();
  EXPECT_THAT(WhatFails([&] { profile.SetInfo(info); }), HasSubstr("time of creation"));

  profile.SetSpecialColors({1, {}, {}});
  const std::span<const std::uint8_t> bytes = profile.FindEntry(EntryKind::kSpecialColors)->bytes;
  Profile other = NewProfile();
  other.SetEntryBytes(EntryKind::kSpecialColors, bytes);
  EXPECT_EQ(other.Info().separateWayCode, 3);
}

TEST(ModernGivenValues, BytesOfEntriesSayWhatWasChangedThroughAccess) {
  Profile profile = NewProfile();
  profile.SetCurve(CurveKind::kInkLimit, CurveOfInk(1, 0, Ramp(1)));
  CProfileDataEntry* const entry =
      profile.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kInkLimit);
  CCurveDataEntry& curve = *dynamic_cast<CInkLimitEntry&>(*entry).GetCurveData()->FindInkIDEntry(1);
  curve.SetAt(5, 4321);
  Profile other = NewProfile();
  other.SetEntryBytes(EntryKind::kInkLimit, profile.FindEntry(EntryKind::kInkLimit)->bytes);
  EXPECT_EQ(Words(other.InkLimit(1))[5], 4321);
  curve.SetDataType(7);  // which no form has
  EXPECT_FALSE(profile.FindEntry(EntryKind::kInkLimit)->isUnderstood);
}

// Every change renews the record, which asks for the settings of the medium.
TEST(ModernGivenValues, ARefusedChangeIsNotMade) {
  Profile made = NewProfile();
  made.SetMedia(MediaSetting::kHeater, std::array{45, 46});
  made.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(1)));
  Bytes file = made.ToBytes("a.icc");
  const auto settings = made.FindEntry(EntryKind::kMedia)->bytes;
  const auto place = std::search(file.begin(), file.end(), settings.begin(), settings.end());
  ASSERT_NE(place, file.end());
  *place = 0xFF;
  Profile profile = Profile::FromBytes(file, "a.icc");
  CProfileDataEntry* const entry =
      profile.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kMediaProperty);
  dynamic_cast<CMediaPropertyEntry&>(*entry).GetMediaPropertyData();  // open to changes, and not understood
  const auto refusal = [](auto run) { EXPECT_THAT(WhatFails(run), HasSubstr("media-property")); };
  refusal([&] { profile.SetCurve(CurveKind::kLinearization, CurveOfInk(2, 0, Ramp(1))); });
  refusal([&] { profile.RemoveEntry(EntryKind::kLinearization); });
  EXPECT_THAT(profile.Curves(CurveKind::kLinearization), SizeIs(1));
  EXPECT_TRUE(profile.RemoveEntry(EntryKind::kMedia));
  EXPECT_TRUE(profile.RemoveEntry(EntryKind::kLinearization));
}

// Alone it is what masks with patterns begin with.
TEST(ModernGivenValues, ABlockThatWouldLoadAsMasksIsRefused) {
  Profile profile = NewProfile();
  const MaskBlock block{5, {}, {1, 2}};
  const auto refusal = [](auto run) { EXPECT_THAT(WhatFails(run), HasSubstr("single block of type 5")); };
  refusal([&] { profile.SetMaskBlocks(std::span(&block, 1)); });
  EXPECT_FALSE(profile.Has(EntryKind::kMaskBlocks));
  profile.SetMaskBlocks(std::vector{block, block});
  EXPECT_THAT(Again(profile).MaskBlocks(), SizeIs(2));

  // Where the second block is broken, one is there, and the bytes of both.
  Bytes file = profile.ToBytes("a.icc");
  const auto bytes = profile.FindEntry(EntryKind::kMaskBlocks)->bytes;
  const auto place = std::search(file.begin(), file.end(), bytes.begin(), bytes.end());
  ASSERT_NE(place, file.end());
  constexpr int kTypeOfSecond = 20 + 24 + 8;
  place[kTypeOfSecond] = 0xEE;
  Profile broken = Profile::FromBytes(file, "a.icc");
  EXPECT_THAT(broken.MaskBlocks(), SizeIs(1));
  EXPECT_THAT(Again(broken).MaskBlocks(), SizeIs(1));

  CProfileDataEntry* const entry =
      profile.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kMaskDownload);
  auto& blocks = dynamic_cast<CMaskDownLoadEntry&>(*entry);
  blocks.Initialize(1);
  blocks.SetWeftDataParameter(0, 5);
  refusal([&] { profile.ToBytes(); });
}

TEST(ModernGivenValues, APathIsNotCutAtAZero) {
  const TempFolder folder;
  Profile profile = NewProfile();
  const std::string path = folder.File("a.icc");
  const std::string longer = path + std::string("\0.icc", 5);
  EXPECT_THAT(WhatFails([&] { profile.Save(longer); }), HasSubstr("zero"));
  EXPECT_FALSE(std::filesystem::exists(path));
  profile.Save(path);
  EXPECT_THAT(WhatFails([&] { Profile::Open(longer); }), HasSubstr("zero"));
  ProfileError why;
  EXPECT_FALSE(Profile::TryOpen(longer, &why));
  EXPECT_THAT(why.what(), HasSubstr("zero"));
  const std::string name("a.icc\0b", 7);
  EXPECT_THAT(WhatFails([&] { profile.ToBytes(name); }), HasSubstr("zero"));
  EXPECT_THAT(WhatFails([&] { Profile::FromBytes(*profile.IccProfile(), name); }), HasSubstr("zero"));
}

}  // namespace
