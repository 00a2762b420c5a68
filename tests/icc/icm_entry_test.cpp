#include "support/entries.h"
#include "support/icc_builder.h"

#include <gtest/gtest.h>
#include <nvxprofile/icm_entry.h>

namespace nvx::test {
namespace {

TEST(IcmEntry, WorksOutTheOptionInfo) {
  const std::vector<std::pair<std::vector<std::string>, std::uint32_t>> cases{
      {{"desc"}, 0}, {{"agfa"}, 2}, {{"AGFA"}, 2}, {{"agfa", "AGFA"}, 2}, {{"Agfa"}, 0}};
  CICMEntry entry;
  EXPECT_FALSE(entry.IsComplete());
  EXPECT_FALSE(entry.BufferToData() || entry.DataToBuffer());
  EXPECT_EQ(entry.GetColors(), 0u);
  for (const auto& [tags, option] : cases) {
    entry.SetOptionInfo(9);
    EXPECT_TRUE(Parse(entry, IccWithTags(tags)));
    EXPECT_EQ(entry.GetOptionInfo(), option) << tags[0];
  }
  EXPECT_EQ(entry.GetColors(), 4u);
  entry.SetOptionInfo(9);
  EXPECT_FALSE(Parse(entry, Bytes(200, 1)));
  EXPECT_EQ(entry.GetOptionInfo(), 9u);
  EXPECT_EQ(entry.GetColors(), 0u);
}

TEST(IcmEntry, LoadsAndSavesFilesAsTheyStand) {
  const TempFolder folder;
  Bytes bytes = IccWithTags({"agfa"});
  bytes.push_back(1);
  WriteBytes(folder.File("a.icc"), bytes);
  CICMEntry entry;
  std::uint32_t error = 77;
  ASSERT_TRUE(entry.Load(folder.WideFile("a.icc").c_str(), error, CICMEntry::kIcmPlain));
  EXPECT_TRUE(entry.IsComplete());
  EXPECT_EQ(entry.GetOptionInfo(), 2u);
  ASSERT_TRUE(entry.Save(folder.WideFile("b.icc").c_str(), error));
  EXPECT_EQ(error, 77u);
  EXPECT_EQ(ReadBytes(folder.File("b.icc")), bytes);

  WriteBytes(folder.File("text"), Bytes(300, 'x'));
  CICMEntry empty;
  for (const std::u16string& path : {folder.WideFile("text"), folder.WideFile("none"), folder.WideFile(".")}) {
    error = 0;
    EXPECT_FALSE(empty.Load(path.c_str(), error, CICMEntry::kIcmPlain));
    EXPECT_EQ(error, 2u);
    EXPECT_EQ(empty.GetSize(), 0u);
    EXPECT_FALSE(empty.IsComplete());
  }
  EXPECT_FALSE(empty.Save(folder.WideFile("b.icc").c_str(), error));
  EXPECT_EQ(error, 1u);
  EXPECT_EQ(ReadBytes(folder.File("b.icc")), bytes) << "a failed save leaves the old file";
  EXPECT_FALSE(entry.Save(folder.WideFile("no/folder").c_str(), error));
}

TEST(IcmEntry, ImportTakesOverTheType) {
  CReplaceProfileEntry source;
  ASSERT_TRUE(Parse(source, IccWithTags({"AGFA"})));
  source.SetLabelString("label");
  CICMEntry target;
  EXPECT_FALSE(target.DoImport(nullptr));
  ASSERT_TRUE(target.DoImport(&source));
  EXPECT_EQ(target.GetUsedType(), 18u);
  EXPECT_EQ(target.GetOptionInfo(), 2u);
  EXPECT_STREQ(target.GetLabelString(), "label");
  EXPECT_EQ(BytesOf(target), BytesOf(source));
  EXPECT_NE(target.GetRefBuffer(), source.GetRefBuffer());
}

}  // namespace
}  // namespace nvx::test
