// A clone says the same as its original, and neither touches the other.
#include "modern/made_profile.h"
#include "support/curve_builder.h"

#include <gtest/gtest.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_access.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace nvx;
using namespace nvx::test;

auto EntriesOf(const Profile& profile) {
  std::vector<std::tuple<EntryKind, std::vector<Route>, std::string, std::uint32_t, bool, Bytes>> entries;
  for (const Entry& e : profile.Entries()) {
    entries.emplace_back(e.kind, e.routes, std::string(e.label), e.optionInfo, e.isUnderstood, CopyOf(e.bytes));
  }
  return entries;
}

TEST(ModernClone, SaysTheSameAndIsAnother) {
  Profile profile = NewProfile();
  nvx::ProfileInfo info = profile.Info();
  info.mediaNames = {{9, "Film"}, {17, "光沢"}};
  profile.SetInfo(info);
  profile.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(1)));
  profile.SetReplaceIccProfile(SampleIccProfile(40));
  const std::uint32_t code = profile.AddCalibration({"May", 0, At(5), {}, {}, {}});

  Profile clone = profile.Clone();
  EXPECT_EQ(EntriesOf(clone), EntriesOf(profile));
  EXPECT_EQ(clone.Format(), profile.Format());
  EXPECT_NE(clone.IccProfile()->data(), profile.IccProfile()->data());
  EXPECT_EQ(clone.Info().mediaNames, info.mediaNames);
  EXPECT_TRUE(clone.HasRoute(nvx::Route::kReplaceIcc));

  const auto view = profile.Linearization(1);
  const auto icc = profile.IccProfile();
  const Bytes iccBytes = CopyOf(*icc);
  clone.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(2)));
  clone.SetIccProfile(SampleIccProfile(60));
  clone.RemoveCalibration(code);
  EXPECT_EQ(Words(view), Ramp(1));
  EXPECT_EQ(CopyOf(*icc), iccBytes);
  EXPECT_EQ(profile.Calibrations().size(), 1u);
  std::optional<Profile> gone(std::move(clone));
  const Profile last = gone->Clone();
  gone.reset();
  EXPECT_EQ(Words(last.Linearization(1)), Ramp(2));
}

// A load counts all samples of a printer profile as 16 bits, those of an entry that it read in part too.
TEST(ModernClone, CountsSamplesAsTheOriginalDoes) {
  // Two curves of 8 samples, of which the second ends early.
  ByteBuilder set = CurveSetHeader(6, 2);
  for (const std::uint32_t ink : {1u, 2u}) set.Append(CurveHeader({.ink = ink, .size = 8, .name = "Ink"}));
  set.Text("SDEC").Fill(3, 8).Text("SDEC").Fill(4, 2);
  const Profile profile = Profile::FromBytes(PrinterFile({{6, 6, set.Take()}}), "a.icc");
  const auto widths = [](const Profile& one) {
    std::vector<std::size_t> indices;
    for (const nvx::Curve& curve : one.Curves(CurveKind::kLinearization)) indices.push_back(curve.samples.index());
    return indices;
  };
  EXPECT_FALSE(profile.FindEntry(nvx::EntryKind::kLinearization)->isUnderstood);
  EXPECT_EQ(widths(profile), std::vector<std::size_t>{1});
  EXPECT_EQ(widths(profile.Clone()), widths(profile));
  EXPECT_EQ(EntriesOf(profile.Clone()), EntriesOf(profile));
}

TEST(ModernClone, KeepsWhatWasChangedThroughAccess) {
  Profile profile = NewProfile();
  profile.SetCurve(CurveKind::kLinearization, CurveOfInk(1, 0, Ramp(1)));
  auto* const entry = dynamic_cast<CProfileCurveEntry*>(
      profile.Access().GetProfileData()->GetProfileDataEntryFromList(CProfileDataEntry::kLinearization));
  ASSERT_NE(entry, nullptr);
  entry->GetCurveData()->DeleteContents();
  EXPECT_TRUE(profile.Clone().Curves(CurveKind::kLinearization).empty());
}

}  // namespace
