// A clone says the same as its original, and neither touches the other.
#include "modern/made_profile.h"
#include "support/qpf_builder.h"

#include <gtest/gtest.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_access.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

using namespace nvx;
using namespace nvx::test;

void ExpectSameEntries(const Profile& one, const Profile& other) {
  const std::vector<Entry> entries = one.Entries();
  const std::vector<Entry> others = other.Entries();
  ASSERT_EQ(entries.size(), others.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    EXPECT_EQ(entries[i].kind, others[i].kind);
    EXPECT_EQ(entries[i].routes, others[i].routes);
    EXPECT_EQ(entries[i].label, others[i].label);
    EXPECT_EQ(entries[i].optionInfo, others[i].optionInfo);
    EXPECT_EQ(entries[i].isUnderstood, others[i].isUnderstood);
    EXPECT_TRUE(
        std::equal(entries[i].bytes.begin(), entries[i].bytes.end(), others[i].bytes.begin(), others[i].bytes.end()));
    EXPECT_TRUE(entries[i].bytes.empty() || entries[i].bytes.data() != others[i].bytes.data());
  }
}

TEST(ModernClone, SaysTheSameAndIsAnother) {
  Profile profile = nvx::test::NewProfile();
  nvx::ProfileInfo info = profile.Info();
  info.mediaNames = {{9, "Film"}, {17, "光沢"}};
  profile.SetInfo(info);
  profile.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(1)));
  profile.SetReplaceIccProfile(nvx::test::SampleIccProfile(40));
  nvx::CalibrationData calibration;
  calibration.name = "May";
  calibration.time = std::chrono::sys_seconds(std::chrono::seconds(5));
  const std::uint32_t code = profile.AddCalibration(calibration);

  Profile clone = profile.Clone();
  ExpectSameEntries(profile, clone);
  EXPECT_EQ(clone.Info().mediaNames, info.mediaNames);
  EXPECT_TRUE(clone.HasRoute(nvx::Route::kReplaceIcc));

  const auto view = profile.Linearization(1);
  const auto icc = profile.IccProfile();
  const std::vector<std::uint8_t> iccBytes(icc->begin(), icc->end());
  clone.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(2)));
  clone.SetIccProfile(nvx::test::SampleIccProfile(60));
  clone.RemoveCalibration(code);
  EXPECT_EQ(Words(view), Ramp(1));
  EXPECT_EQ(std::vector<std::uint8_t>(icc->begin(), icc->end()), iccBytes);
  EXPECT_EQ(profile.Calibrations().size(), 1u);
  std::optional<Profile> gone(std::move(clone));
  const Profile last = gone->Clone();
  gone.reset();
  EXPECT_EQ(Words(last.Linearization(1)), Ramp(2));
}

// A load counts all samples of a printer profile as 16 bits, those of an entry that it read in part too.
TEST(ModernClone, CountsSamplesAsTheOriginalDoes) {
  // Two curves of 8 samples, of which the second ends early.
  nvx::test::ByteBuilder set;
  set.U8(0x20).Text("FCC").U32(32, 0x00010000, 6, 2).Zero(12);
  for (const std::uint32_t ink : {1u, 2u}) {
    set.Text("IHEC").U32(132, ink, 2, 3, 4, 255, 0, 1, 8).Text("Ink", 92);
  }
  set.Text("SDEC").Fill(3, 8).Text("SDEC").Fill(4, 2);
  const nvx::test::Bytes file =
      nvx::test::IccFile({{"NVX1", nvx::test::EntryTag({{6, 6, set.Take()}, nvx::test::Placeholder()})},
                          {"NVX2", nvx::test::MediaTag({})}});
  const Profile profile = Profile::FromBytes(file, "a.icc");
  const auto widths = [](const Profile& one) {
    std::vector<std::size_t> indices;
    for (const nvx::Curve& curve : one.Curves(CurveKind::kLinearization)) indices.push_back(curve.samples.index());
    return indices;
  };
  EXPECT_FALSE(profile.FindEntry(nvx::EntryKind::kLinearization)->isUnderstood);
  EXPECT_EQ(widths(profile), std::vector<std::size_t>{1});
  EXPECT_EQ(widths(profile.Clone()), widths(profile));
  ExpectSameEntries(profile, profile.Clone());
}

TEST(ModernClone, KeepsWhatWasChangedThroughAccess) {
  Profile profile = nvx::test::NewProfile();
  profile.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(1)));
  auto* const entry = dynamic_cast<CProfileCurveEntry*>(
      profile.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kLinearization));
  ASSERT_NE(entry, nullptr);
  entry->GetCurveData()->DeleteContents();
  EXPECT_TRUE(profile.Clone().Curves(CurveKind::kLinearization).empty());
}

}  // namespace
