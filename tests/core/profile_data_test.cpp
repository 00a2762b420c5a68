#include "core/payload.h"
#include "core/text.h"
#include "support/entries.h"
#include "support/random_model.h"

#include <nvxprofile/profile_data.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

// An entry of any type that tells when it is destroyed.
class TestEntry : public CProfileDataEntry {
 public:
  explicit TestEntry(std::uint32_t usedType, int* destroyed = nullptr) : destroyed_(destroyed) {
    SetUsedType(usedType);
  }
  ~TestEntry() override {
    if (destroyed_ != nullptr) ++*destroyed_;
  }

 private:
  int* destroyed_;
};

TEST(ProfileData, AnEmptyProfileHasNothingAndLookupsAddNothing) {
  CProfileData data;
  EXPECT_FALSE(data.GetEntryStartPos());
  EXPECT_FALSE(data.GetRouteStartPos());
  EXPECT_EQ(data.GetEntryCount(4), -1);
  EXPECT_EQ(data.GetProfileRoute(4), nullptr);
  EXPECT_EQ(data.GetProfileDataEntry(4, 6), nullptr);
  EXPECT_EQ(data.RemoveProfileDataEntry(6, 4), nullptr);
  data.SetProfileDataEntry(nullptr, 4);
  EXPECT_FALSE(data.IsV3());
  EXPECT_EQ(data.CreateMediaInfoArray(0), nullptr);
}

TEST(ProfileData, TheFirstEntryOfATypeWinsAndStandsOnBothRoutes) {
  int destroyed = 0;
  CProfileData data;
  auto* const first = new TestEntry(7, &destroyed);
  data.SetProfileDataEntry(first, 1);
  data.SetProfileDataEntry(new TestEntry(7, &destroyed), 2);
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(data.GetProfileDataEntry(2, 7), first);
  EXPECT_EQ(data.GetEntryCount(1), 1);
  EXPECT_EQ(data.GetEntryCount(2), 1);
  EXPECT_TRUE(data.IsICCRoot());
  EXPECT_TRUE(data.IsGrayBalance());

  EXPECT_EQ(data.RemoveProfileDataEntry(7, 1), first);
  EXPECT_FALSE(data.IsSpecifiedRoute(1));
  EXPECT_EQ(destroyed, 1) << "the other route still has it";
  EXPECT_EQ(data.GetProfileDataEntryFromList(7), first);
  EXPECT_EQ(data.RemoveProfileDataEntry(7, 2), first);
  EXPECT_EQ(data.GetProfileDataEntryFromList(7), nullptr);
  first->Delete();
  EXPECT_EQ(destroyed, 2);
}

TEST(ProfileData, WalksEntriesByArrivalAndRoutesByNumber) {
  int destroyed = 0;
  {
    CProfileData data;
    data.SetProfileDataEntry(new TestEntry(16, &destroyed), 2048);
    data.SetProfileDataEntry(new TestEntry(2, &destroyed), 4);
    data.SetProfileDataEntry(new TestEntry(16, &destroyed), 4);
    data.SetProfileDataEntry(data.GetProfileDataEntryFromList(16), 4);
    std::vector<std::uint32_t> types, routes;
    bool more = data.GetEntryStartPos();
    while (more) types.push_back(data.GetNextEntry(more)->GetUsedType());
    more = data.GetRouteStartPos();
    while (more) routes.push_back(data.GetNextRoute(more)->GetRouteType());
    EXPECT_EQ(types, (std::vector<std::uint32_t>{16, 2}));
    EXPECT_EQ(routes, (std::vector<std::uint32_t>{4, 2048}));
    EXPECT_EQ(data.GetEntryCount(4), 3);
    EXPECT_EQ(data.GetNextEntry(more), nullptr);

    CProfileRoute* const route = data.GetProfileRoute(4);
    CProfileDataEntry* const twice = data.GetProfileDataEntryFromList(16);
    EXPECT_TRUE(route->IsExistEntry(twice));
    EXPECT_EQ(data.RemoveProfileDataEntry(16, 4), twice);
    EXPECT_EQ(data.GetEntryCount(4), 1);
    EXPECT_EQ(destroyed, 1);
  }
  EXPECT_EQ(destroyed, 3);
}

TEST(ProfileData, ContentsGoAndTheRecordStays) {
  CProfileData data;
  data.SetProfileDataEntry(new TestEntry(6), 4);
  ASSERT_TRUE(data.GetRouteStartPos());
  _tagDeviceProfileInfo& info = *data.GetProfileInfo();
  info.LayoutNumber = nvx::kBinaryView;
  info.Binary = {};
  info.Binary.ModelNumber = 5;
  data.SetMediaInfo(std::vector<tagMedia>(2));
  data.DeleteContents();
  EXPECT_EQ(info.Binary.MediaInfo, nullptr) << "the names were the model's";
  EXPECT_EQ(info.Binary.ModelNumber, 5u);
  bool more = true;
  EXPECT_EQ(data.GetNextRoute(more), nullptr);
  EXPECT_FALSE(more);
  EXPECT_FALSE(data.GetEntryStartPos());
  data.SetProfileDataEntry(new TestEntry(6), 4);
  ASSERT_TRUE(data.GetRouteStartPos());
  data.RemoveProfileDataEntry(6, 4)->Delete();
  EXPECT_EQ(data.GetNextRoute(more), nullptr) << "the route went with its last entry";

  info.LayoutNumber = nvx::kTextView;
  std::memset(&info.Text, 'x', sizeof info.Text);
  const auto before = info.Text;
  data.DeleteContents();
  EXPECT_EQ(std::memcmp(&info.Text, &before, sizeof before), 0) << "text has no names to lose";
}

TEST(ProfileData, InnerNamesOfRoutes) {
  char name[17];
  for (const auto& [route, inner] : {std::pair(1u, "QctIcmForUse.qct"), {2u, "QctGryForUse.qct"}, {4u, ""}}) {
    CProfileRoute(route).GetQctInnerName(name);
    EXPECT_STREQ(name, inner);
  }
}

TEST(ProfileDataEntry, BuffersAreReplacedAndTextIsCut) {
  TestEntry entry(6);
  ASSERT_NE(entry.GetBuffer(10), nullptr);
  EXPECT_EQ(entry.GetSize(), 10u);
  EXPECT_EQ(entry.GetBuffer(0), nullptr);
  EXPECT_EQ(entry.GetSize(), 0u);
  entry.AttachBuffer(static_cast<std::uint8_t*>(std::malloc(4)), 4);
  EXPECT_EQ(entry.GetSize(), 4u);
  EXPECT_TRUE(entry.SetLabelString(std::string(300, 'x').c_str()));
  EXPECT_EQ(std::strlen(entry.GetLabelString()), 255u);
  EXPECT_TRUE(entry.SetLabelString(nullptr));
  EXPECT_STREQ(entry.GetLabelString(), "");
}

TEST(ProfileDataEntry, CopyTakesFlagsAndBytes) {
  TestEntry source(6);
  source.SetComplete(true);
  source.SetDisplay(true);
  source.SetFormatType(9);
  source.SetOptionInfo(77);
  source.SetLabelString("label");
  nvx::test::SetBytes(source, {1, 2, 3});
  TestEntry target(1);
  source.Copy(target);
  EXPECT_EQ(nvx::test::ImageOf(target), (nvx::test::EntryImage{6, 9, true, 77, "label", {1, 2, 3}}));
  EXPECT_TRUE(target.IsDisplayEnable());
  target.Copy(target);
  TestEntry(6).Copy(target);
  EXPECT_EQ(target.GetSize(), 3u) << "an empty source leaves the target's bytes";
}

TEST(ProfileDataEntry, ARebuiltBufferHasTheAskedLengthOrStaysAsItWas) {
  TestEntry entry(6);
  const auto write = [](std::uint32_t count) {
    return [count](CNvxFile& file) {
      const std::vector<char> bytes(count, 'x');
      return nvx::WriteExact(file, bytes.data(), count);
    };
  };
  EXPECT_TRUE(nvx::RebuildBuffer(entry, nvx::BufferLength::kCapacity, write(276)));
  EXPECT_EQ(entry.GetSize(), 1024u);
  EXPECT_EQ(entry.GetRefBuffer()[275], 'x');
  EXPECT_EQ(entry.GetRefBuffer()[276], 0);
  EXPECT_EQ(entry.GetRefBuffer()[1023], 0);
  const std::uint8_t* const place = entry.Bytes().data();
  EXPECT_TRUE(nvx::RebuildBuffer(entry, nvx::BufferLength::kCapacity, write(276)));
  EXPECT_EQ(entry.Bytes().data(), place) << "it says the same already";
  for (const std::size_t at : {0u, 275u, 276u, 1023u}) {
    entry.GetRefBuffer()[at] = 'y';
    EXPECT_TRUE(nvx::RebuildBuffer(entry, nvx::BufferLength::kCapacity, write(276)));
    EXPECT_EQ(entry.Bytes()[at], at < 276 ? 'x' : 0);
  }
  EXPECT_TRUE(nvx::RebuildBuffer(entry, nvx::BufferLength::kCapacity, write(1024)));
  EXPECT_EQ(entry.GetSize(), 1024u);
  EXPECT_TRUE(nvx::RebuildBuffer(entry, nvx::BufferLength::kExact, write(1025)));
  EXPECT_EQ(entry.GetSize(), 1025u);
  EXPECT_FALSE(nvx::RebuildBuffer(entry, nvx::BufferLength::kExact, [](CNvxFile&) { return false; }));
  // Whoever writes 4 GiB is refused before there is a block for them.
  EXPECT_FALSE(nvx::RebuildBuffer(entry, nvx::BufferLength::kExact, [](CNvxFile& file) {
    return file.Write("", 0xFFFFFFFFu) == 0xFFFFFFFFu && file.Write("", 1) == 1;
  }));
  EXPECT_EQ(entry.GetSize(), 1025u);
}

TEST(ProfileDataInfo, VersionsAndOrder) {
  CProfileDataInfo info;
  const auto versions = [&](std::uint32_t major, std::uint32_t minor) {
    info.Info.ProfileMajorVersion = major;
    info.Info.ProfileMinorVersion = minor;
    return std::pair(info.IsKnownVersion(), info.IsNotVersion2());
  };
  EXPECT_EQ(versions(2, 0), std::pair(true, false));
  EXPECT_EQ(versions(2, 1), std::pair(false, true));
  EXPECT_EQ(versions(3, 5), std::pair(true, true));
  EXPECT_EQ(versions(3, 6), std::pair(false, true));
  EXPECT_EQ(versions(0, 0), std::pair(false, true));

  CProfileDataInfo other;
  const auto set = [](auto& key, std::u16string_view text) { nvx::CopyText(key, text); };
  set(info.Info.ListKeys[0], u"a");
  set(other.Info.ListKeys[0], u"b");
  EXPECT_TRUE(info.IsOrderedBefore(other));
  set(info.Info.MediaName, u"z");
  EXPECT_FALSE(info.IsOrderedBefore(other));
  set(info.Info.ListKeys[4], u"A");
  set(other.Info.ListKeys[4], u"B");
  EXPECT_TRUE(info.IsOrderedBefore(other));
  set(info.Info.ListKeys[1], u"y");
  EXPECT_FALSE(info.IsOrderedBefore(other));
  EXPECT_TRUE(other.IsOrderedBefore(info));
  EXPECT_FALSE(info.IsOrderedBefore(info));
}

}  // namespace
