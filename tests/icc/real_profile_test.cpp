// Every real profile of this machine, edited by us and judged by Little CMS.
#include "icc/icc_image.h"
#include "support/icc_builder.h"
#include "support/icc_judge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace nvx::test {
namespace {

Bytes Filled(std::size_t size) {
  Bytes bytes{'t', 'e', 'x', 't', 0, 0, 0, 0};
  bytes.resize(size, 'x');
  return bytes;
}

// Colours do not hang on these.
const std::vector<std::uint32_t> kTexts{Signature("cprt"), Signature("dmnd"), Signature("dmdd"), Signature("desc")};

class RealProfile : public testing::TestWithParam<std::string> {};

TEST_P(RealProfile, SurvivesEdits) {
  const Bytes original = ReadBytes(GetParam());
  const auto image = IccImage::Open(original);
  ASSERT_NE(image, nullptr);
  const IccJudge before(original);
  ASSERT_TRUE(before.Opens());
  ASSERT_EQ(image->Signatures(), before.Tags());

  std::map<std::uint32_t, Bytes> changed;
  const auto set = [&](std::uint32_t signature, const Bytes& bytes) {
    image->SetTag(signature, bytes);
    changed[signature] = bytes;
  };
  // Deleted, grown, shrunk, added: whatever of the texts is there takes its turn.
  std::vector<std::uint32_t> texts;
  for (const std::uint32_t text : kTexts) {
    if (image->Tag(text)) texts.push_back(text);
  }
  ASSERT_FALSE(texts.empty());
  set(texts[0], Filled(image->Tag(texts[0])->size() + 5));
  if (texts.size() > 1) set(texts[1], Filled(9));
  std::vector<std::uint32_t> expected = before.Tags();
  if (texts.size() > 2) {
    image->RemoveTag(texts[2]);
    expected.erase(std::find(expected.begin(), expected.end(), texts[2]));
  }
  set(Signature("NVX1"), Filled(100'001));
  set(Signature("NVX2"), Filled(10));
  expected.insert(expected.end(), {Signature("NVX1"), Signature("NVX2")});

  Bytes edited(static_cast<std::size_t>(image->Size()), 0xEE);
  ASSERT_TRUE(image->CopyTo(edited));
  ASSERT_EQ(LoadBig<std::uint32_t>(edited.data()), edited.size());
  ASSERT_EQ(edited.size() % 4, 0u);
  IccJudge after(edited);
  ASSERT_TRUE(after.Opens());
  ASSERT_EQ(after.Tags(), expected);
  for (const std::uint32_t tag : expected) {
    const auto change = changed.find(tag);
    EXPECT_EQ(after.Raw(tag), change != changed.end() ? change->second : before.Raw(tag));
    if (change == changed.end()) {
      EXPECT_EQ(after.LinkedTo(tag), before.LinkedTo(tag));
    }
  }
  EXPECT_EQ(after.ColorsInSrgb(), before.ColorsInSrgb());
  IccDirectory directory;
  ASSERT_TRUE(ReadIccDirectory(edited.data(), edited.size(), directory));
  for (const IccTag& tag : directory.tags) {
    for (std::uint32_t i = tag.offset + tag.size; i % 4 != 0; ++i) EXPECT_EQ(edited[i], 0) << "padding";
    EXPECT_EQ(tag.offset % 4, 0u);
  }

  // Without the additions the image is as long as one that never had them.
  image->RemoveTag(Signature("NVX1"));
  image->RemoveTag(Signature("NVX2"));
  EXPECT_EQ(image->Size(), edited.size() - 24 - 100'004 - 12);
}

TEST_P(RealProfile, KeepsARightProfileID) {
  const Bytes original = ReadBytes(GetParam());
  const auto image = IccImage::Open(original);
  ASSERT_NE(image, nullptr);
  IccJudge before(original);
  const Bytes stored = before.StoredID();
  image->SetTag(Signature("NVX1"), Filled(777));
  Bytes edited(static_cast<std::size_t>(image->Size()), 0xEE);
  ASSERT_TRUE(image->CopyTo(edited));
  IccJudge after(edited);
  if (stored == Bytes(16)) {
    EXPECT_EQ(after.StoredID(), stored);
    return;
  }
  EXPECT_NE(after.StoredID(), stored);
  // Little CMS computes the ID of the image that it would write itself, which need not be the one that is there.
  if (before.ComputedID() == stored) {
    const Bytes ours = after.StoredID();
    EXPECT_EQ(after.ComputedID(), ours);
  }
  // The way back gives the ID that the makers of the file computed, where the image is again theirs.
  image->RemoveTag(Signature("NVX1"));
  Bytes back(static_cast<std::size_t>(image->Size()));
  ASSERT_TRUE(image->CopyTo(back));
  if (std::equal(back.begin() + 100, back.end(), original.begin() + 100, original.end())) {
    EXPECT_EQ(IccJudge(back).StoredID(), stored);
  }
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param.substr(info.param.rfind("icc/") + 4);
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return std::to_string(info.index) + "_" + name;
}

INSTANTIATE_TEST_SUITE_P(Installed, RealProfile, testing::ValuesIn(RealProfiles()), NameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealProfile);

// The judge itself: that the checks above meet profiles of all kinds.
TEST(RealProfiles, AreOfAllKinds) {
  std::size_t withID = 0, agreeing = 0, shared = 0, transforms = 0;
  std::map<std::uint32_t, int> spaces;
  const std::vector<std::string> paths = RealProfiles();
  if (paths.empty()) GTEST_SKIP() << "install icc-profiles-free, colord-data and libgs-common";
  for (const std::string& path : paths) {
    IccJudge judge(ReadBytes(path));
    ASSERT_TRUE(judge.Opens()) << path;
    const std::vector<std::uint32_t> tags = judge.Tags();
    shared += std::any_of(tags.begin(), tags.end(), [&](std::uint32_t tag) { return judge.LinkedTo(tag) != 0; });
    transforms += judge.ColorsInSrgb().has_value();
    const Bytes stored = judge.StoredID();
    withID += stored != Bytes(16);
    agreeing += stored != Bytes(16) && judge.ComputedID() == stored;
    IccDirectory directory;
    const Bytes bytes = ReadBytes(path);
    ASSERT_TRUE(ReadIccDirectory(bytes.data(), bytes.size(), directory));
    ++spaces[directory.header.phDataColorSpace];
  }
  EXPECT_GE(paths.size(), 45u);
  EXPECT_GE(spaces.size(), 5u);
  EXPECT_GE(shared, 25u);
  EXPECT_GE(transforms, 40u);
  EXPECT_GE(withID, 20u);
  EXPECT_GE(agreeing, 15u);
}

}  // namespace
}  // namespace nvx::test
