// Opening, saving, and what must not get lost between the two.
#include "made_profile.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/legacy_profile.h"
#include "support/random_model.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace {

using namespace nvx;
using namespace nvx::test;
using testing::HasSubstr;

// Entries by what a file keeps of them.
std::vector<std::pair<EntryKind, Bytes>> EntriesOf(const Profile& profile) {
  std::vector<std::pair<EntryKind, Bytes>> entries;
  for (const nvx::Entry& entry : profile.Entries()) {
    if (entry.kind != EntryKind::kIcc) entries.emplace_back(entry.kind, CopyOf(entry.bytes));
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

Bytes TwoEntriesOfOneKind() {
  const auto set = [](std::uint8_t sample) { return CurveSet(2, Bytes(8, sample)); };
  return PrinterFile({{2, 6, set(1)}, {2, 6, set(9)}});
}

TEST(ModernProfile, WhatIsSavedIsTheSameInAFileAndInMemory) {
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "1700000000");
  const TempFolder folder;
  Profile made = NewProfile();
  const auto ramp = Ramp(7);
  made.SetCurve(nvx::CurveKind::kLinearization, CurveOfInk(3, 0, ramp));
  made.SetReplaceIccProfile(SampleIccProfile(332));
  made.AddCalibration({"first", 1, At(50), {}, {CurveOfInk(1, 0, ramp)}, {}});
  const Bytes bytes = made.ToBytes("glossy.icc");
  made.Save(folder.File("glossy.icc"));
  EXPECT_EQ(ReadBytes(folder.File("glossy.icc")), bytes);

  const Profile opened = Profile::Open(folder.File("glossy.icc"));
  EXPECT_EQ(EntriesOf(opened), EntriesOf(made));
  EXPECT_EQ(EntriesOf(Profile::FromBytes(bytes, "glossy.icc")), EntriesOf(made));
  EXPECT_EQ(opened.Info().fileName, "glossy.icc");
  EXPECT_EQ(opened.Format(), nvx::kPrinterProfile);
  EXPECT_TRUE(opened.HasRoute(Route::kReplaceIcc));
  EXPECT_EQ(Words(opened.Linearization(3)), ramp);
  EXPECT_EQ(CopyOf(*opened.ReplaceIccProfile()), SampleIccProfile(332));
  EXPECT_EQ(opened.Calibrations().size(), 1u);
}

TEST(ModernProfile, FailuresNamePlaceAndRule) {
  const TempFolder folder;
  ProfileError why;
  EXPECT_FALSE(Profile::TryOpen(folder.File("none.icc"), &why));
  EXPECT_THAT(why.what(), HasSubstr("none.icc"));
  EXPECT_EQ(why.Rule(), "file: cannot be opened");

  Bytes broken = IccFile({{"NVX1", EntryTag({{2, 6, {1, 2, 3}}, Placeholder()})}, {"NVX2", Bytes(8)}});
  WriteBytes(folder.File("broken.icc"), broken);
  EXPECT_FALSE(Profile::TryOpen(folder.File("broken.icc"), &why));
  EXPECT_EQ(why.Place(), "NVX2");
  EXPECT_EQ(why.Rule(), "media names: cut short");
  EXPECT_THAT(why.what(), HasSubstr("Profile: Load Error"));
  EXPECT_GT(why.Findings().size(), 1u);
  const std::string what = WhatFails([&] { Profile::FromBytes(broken, "broken.icc"); });
  EXPECT_THAT(what, HasSubstr("NVX2: media names: cut short"));
  EXPECT_THAT(WhatFails([&] { Profile::Open(folder.Path()); }), HasSubstr("cannot be opened"));
  EXPECT_NE(WhatFails([&] { Profile::FromBytes({}); }), "");
  // Files that are of no known format get a reason too.
  broken.resize(broken.size() / 2);
  EXPECT_THAT(WhatFails([&] { Profile::FromBytes(broken, "broken.icc"); }),
              HasSubstr("ICC header: size beyond the end"));

  Profile made = NewProfile();
  EXPECT_FALSE(made.TrySave(folder.Path() / "missing" / "a.icc", &why));
  EXPECT_THAT(why.what(), HasSubstr("cannot be written"));
  EXPECT_TRUE(why.Findings().empty());
}

TEST(ModernProfile, ASecondEntryOfAKindIsNotDroppedInSilence) {
  const TempFolder folder;
  WriteBytes(folder.File("two.icc"), TwoEntriesOfOneKind());
  Profile profile = Profile::Open(folder.File("two.icc"));
  EXPECT_FALSE(profile.IsWhole());
  EXPECT_THAT(WhatFails([&] { profile.Save(folder.File("two.icc")); }), HasSubstr("held more"));
  EXPECT_EQ(ReadBytes(folder.File("two.icc")), TwoEntriesOfOneKind());
  profile.AcceptLoss();
  profile.Save(folder.File("one.icc"));
  EXPECT_TRUE(Profile::Open(folder.File("one.icc")).IsWhole());
}

TEST(ModernProfile, SavesWhatThePublishedClassesChanged) {
  Profile profile = NewProfile();
  profile.SetCurve(nvx::CurveKind::kInkLimit, CurveOfInk(1, 0, Ramp(1)));
  CProfileData& model = *profile.Access().GetProfileData();
  auto* const entry = static_cast<CInkLimitEntry*>(model.GetProfileDataEntryFromList(CProfileDataEntry::kInkLimit));
  entry->GetCurveData()->FindInkIDEntry(1)->SetAt(5, 4321);
  // Neither looking at the profile nor a change elsewhere drops it.
  EXPECT_EQ(Words(profile.Curves(nvx::CurveKind::kInkLimit).front().samples)[5], 4321);
  EXPECT_EQ(Words(profile.InkLimit(1))[5], 4321);
  entry->GetCurveData()->FindInkIDEntry(1)->SetAt(6, 1234);
  profile.SetMedia(nvx::MediaSetting::kWaveForm, std::array{2});
  dynamic_cast<CMediaPropertyEntry&>(*model.GetProfileDataEntryFromList(CProfileDataEntry::kMediaProperty))
      .GetMediaPropertyData()
      ->Find(nvx::kMediaWaveForm)
      ->SetParameter(0, 7);
  profile.SetCurve(nvx::CurveKind::kUcr, CurveOfInk(0, 1, Ramp(1)));
  const Profile read = Profile::FromBytes(profile.ToBytes());
  EXPECT_EQ(Words(read.InkLimit(1))[5], 4321);
  EXPECT_EQ(Words(read.InkLimit(1))[6], 1234);
  EXPECT_EQ((*read.Media(nvx::MediaSetting::kWaveForm))[0], 7);
  profile.RemoveEntry(EntryKind::kUcr);

  // What no file keeps is refused, and not left out.
  model.SetProfileDataEntry(CProfileDataEntry::CreateDataEntry(CProfileDataEntry::kUcr), 0x10);
  EXPECT_THAT(WhatFails([&] { profile.ToBytes(); }), HasSubstr("route 16"));
  EXPECT_TRUE(profile.RemoveEntry(EntryKind::kUcr));
  for (const auto kind : {CProfileDataEntry::kMaskDownload, CProfileDataEntry::kMaskDownloadIncludePattern}) {
    model.SetProfileDataEntry(CProfileDataEntry::CreateDataEntry(kind), nvx::kRouteMaskDownload);
  }
  EXPECT_THAT(WhatFails([&] { profile.ToBytes(); }), HasSubstr("one entry on route 8"));
  profile.RemoveEntry(EntryKind::kMasks);
  entry->GetCurveData()->FindInkIDEntry(1)->SetDataType(7);
  EXPECT_THAT(WhatFails([&] { profile.ToBytes(); }), HasSubstr("entry ink-limit"));

  // A frame that stands elsewhere; its route is gone with it.
  Profile astray = NewProfile();
  CProfileData& routes = *astray.Access().GetProfileData();
  routes.SetProfileDataEntry(routes.RemoveProfileDataEntry(CProfileDataEntry::kIcm, nvx::kRouteMain),
                             nvx::kRouteReplaceProfile);
  EXPECT_THAT(WhatFails([&] { astray.ToBytes(); }), HasSubstr("no ICC profile"));
}

TEST(ModernProfile, RandomProfilesComeBackWhole) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    CProfileData data;
    FillRandomProfile(data, random);
    CNvxMemFile file;
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(file, &data, nvx::kSaveReplaceProfile | nvx::kSaveCalibration));
    const Bytes bytes(file.Buffer, file.Buffer + file.Position);
    std::free(file.Buffer);
    Profile profile = Profile::FromBytes(bytes, "a.icc");
    const auto entries = EntriesOf(profile);
    EXPECT_EQ(EntriesOf(Profile::FromBytes(profile.ToBytes("a.icc"), "a.icc")), entries);
    // Written back one by one, also after they were gone, the entries are what they were.
    for (const auto& [kind, entry] : entries) {
      const std::optional<nvx::Entry> found = profile.FindEntry(kind);
      if (!found->isUnderstood || entry.empty()) continue;
      const std::vector<Route> routes = found->routes;
      profile.SetEntryBytes(kind, entry);
      ASSERT_TRUE(profile.RemoveEntry(kind));
      EXPECT_FALSE(profile.Has(kind));
      EXPECT_EQ(WhatFails([&, k = kind, &b = entry] { profile.SetEntryBytes(k, b); }), "");
      EXPECT_EQ(profile.FindEntry(kind)->routes, routes);
    }
    EXPECT_EQ(EntriesOf(profile), entries);
  }
}

TEST(ModernProfile, OtherFormats) {
  const TempFolder folder;
  // A plain profile keeps its bytes.
  const Bytes icc = SampleIccProfile(77);
  WriteBytes(folder.File("plain.icc"), icc);
  Profile plain = Profile::Open(folder.File("plain.icc"));
  plain.Save(folder.File("copy.icc"));
  EXPECT_EQ(ReadBytes(folder.File("copy.icc")), icc);
  EXPECT_THAT(WhatFails([&] { plain.SetMedia(nvx::MediaSetting::kWave, std::array{1}); }), HasSubstr("no place"));

  CProfileData data;
  std::mt19937 random(3);
  FillRandomRoute(data, 2, random);
  ASSERT_TRUE(CProfileFileQCT().SaveData(folder.WideFile("a.qct").c_str(), &data, 2));
  Profile container = Profile::Open(folder.File("a.qct"));
  EXPECT_EQ(container.Format(), nvx::kContainer);
  container.Save(folder.File("b.qct"));
  EXPECT_EQ(ReadBytes(folder.File("b.qct")), ReadBytes(folder.File("a.qct")));
  container.SetMedia(nvx::MediaSetting::kWave, std::array{1});
  EXPECT_EQ(container.FindEntry(EntryKind::kMedia)->routes, std::vector{Route::kGrayBalance});
  // A table that is replaced whole keeps what the container says of its entry.
  container.SetLampPatterns({});
  CProfileDataEntry& lamp =
      *container.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kLargeParameter);
  lamp.SetLabelString("lamp");
  lamp.SetOptionInfo(9);
  lamp.SetComplete(false);
  container.SetLampPatterns(std::array{nvx::LampPattern()});
  const Profile again = Again(container);
  const nvx::Entry entry = *again.FindEntry(EntryKind::kLamp);
  EXPECT_EQ(std::tuple(entry.label, entry.optionInfo, entry.complete), std::tuple("lamp", 9u, false));

  const LegacyFolder legacy;
  ASSERT_TRUE(WriteLegacyProfile(legacy.File("old.qpf"), {1, 10}, {6, 7}));
  Profile text = Profile::Open(legacy.File("old.qpf"));
  EXPECT_EQ(text.Format(), nvx::kText2);
  EXPECT_TRUE(text.Info().created);
  EXPECT_THAT(WhatFails([&] { text.Save(folder.File("old.qpf")); }), HasSubstr("text-headed"));
}

TEST(ModernProfile, IccProfilesAreLookedAtWhenTheyCome) {
  EXPECT_THAT(WhatFails([] { Profile::Create(std::array<std::uint8_t, 3>{}); }), HasSubstr("no ICC profile"));
  Profile profile = NewProfile();
  const Bytes before = CopyOf(*profile.IccProfile());
  EXPECT_THAT(WhatFails([&] { profile.SetIccProfile(TwoEntriesOfOneKind()); }), HasSubstr("NVX1"));
  EXPECT_EQ(CopyOf(*profile.IccProfile()), before);
  EXPECT_TRUE(profile.RemoveEntry(EntryKind::kIcc));
  EXPECT_THAT(WhatFails([&] { profile.ToBytes(); }), HasSubstr("no ICC profile"));
  profile.SetIccProfile(before);
  EXPECT_EQ(WhatFails([&] { profile.ToBytes(); }), "");
}

TEST(ModernProfile, Information) {
  Profile profile = NewProfile();
  nvx::ProfileInfo info = profile.Info();
  info.modelCode = "1234";
  info.modelSubCode = "05";
  info.internalCode = "67";
  info.mediaCode = "000012345";
  info.defaultMediaName = "Glänzend";
  info.mediaNames = {{9, "Glossy"}, {17, "光沢紙"}};
  info.revision = "A1B2";
  info.createModule = "maker 1.0";
  info.maker = "Someone";
  info.scanResolution = 720;
  info.feedResolution = 1440;
  info.colorsetCode = 4;
  info.inkTypeCode = 5;
  info.inkMakerCode = 6;
  info.inkVersion = 7;
  info.dotType = 8;
  info.halftoneCode = 9;
  info.separateWayCode = 10;
  info.databaseKey = {1, 2, 3, 4, 5};
  info.outputThirdValue = 300;
  info.created = At(1'600'000'000);
  profile.SetInfo(info);
  const ScopedLanguage japanese("ja_JP.UTF-8");
  const nvx::ProfileInfo read = Profile::FromBytes(profile.ToBytes("a.icc"), "a.icc").Info();
  // What follows from the others.
  info.mediaName = "光沢紙";
  info.renderingScan = 720;
  info.renderingFeed = 1440;
  const auto fields = [](const nvx::ProfileInfo& i) {
    return std::tie(i.modelCode, i.modelSubCode, i.internalCode, i.mediaCode, i.mediaName, i.defaultMediaName,
                    i.mediaNames, i.revision, i.createModule, i.maker, i.scanResolution, i.feedResolution,
                    i.renderingScan, i.renderingFeed, i.colorsetCode, i.inkTypeCode, i.inkMakerCode, i.inkVersion,
                    i.dotType, i.halftoneCode, i.separateWayCode, i.databaseKey, i.outputThirdValue, i.created);
  };
  EXPECT_TRUE(fields(read) == fields(info));

  const auto refused = [&](auto change) {
    nvx::ProfileInfo wrong = profile.Info();
    change(wrong);
    const std::string what = WhatFails([&] { profile.SetInfo(wrong); });
    EXPECT_EQ(profile.Info().maker, "Someone");
    return what;
  };
  EXPECT_THAT(refused([](auto& i) { i.modelCode = "12345"; }), HasSubstr("model code"));
  EXPECT_THAT(refused([](auto& i) { i.modelCode = "x"; }), HasSubstr("digits"));
  EXPECT_THAT(refused([](auto& i) { i.maker = std::string(33, 'x'); }), HasSubstr("longer than its 32"));
  EXPECT_THAT(refused([](auto& i) { i.maker = "\xff"; }), HasSubstr("no UTF-8"));
  EXPECT_THAT(refused([](auto& i) { i.maker = std::string("a\0b", 3); }), HasSubstr("zero"));
  EXPECT_THAT(refused([](auto& i) { i.mediaNames = {{9, std::string(65, 'x')}}; }), HasSubstr("media name"));
}

TEST(ModernProfile, VersionIsThatOfTheHeaders) {
  EXPECT_EQ(nvx::Version(), std::to_string(NVXPROFILE_VERSION_MAJOR) + "." + std::to_string(NVXPROFILE_VERSION_MINOR) +
                                "." + std::to_string(NVXPROFILE_VERSION_PATCH));
}

TEST(ModernProfile, MovesKeepSpans) {
  Profile profile = NewProfile();
  const std::span<const std::uint8_t> icc = *profile.IccProfile();
  Profile moved = std::move(profile);
  EXPECT_EQ(moved.IccProfile()->data(), icc.data());
  profile = NewProfile();
  EXPECT_TRUE(profile.Has(EntryKind::kIcc));
}

}  // namespace
