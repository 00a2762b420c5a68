#include "support/icc_builder.h"

#include <gtest/gtest.h>
#include <nvxprofile/input_profile.h>

#include <ctime>

namespace nvx::test {
namespace {

TEST(InputProfile, KeepsAFewFactsOfAPlainProfile) {
  const TempFolder folder;
  WriteBytes(folder.File("scan.cmyk.icc"), IccWithTags({"desc"}));
  WriteBytes(folder.File("rgb"), IccWithTags({"desc"}, "RGB "));
  WriteBytes(folder.File("printer.icc"), IccWithTags({"desc", "NVX1"}));
  WriteBytes(folder.File("text"), Bytes(500, 'x'));
  CInputProfileAccess access;
  EXPECT_FALSE(access.Init(folder.WideFile("text").c_str(), nullptr));
  EXPECT_FALSE(access.Init(folder.WideFile("printer.icc").c_str(), nullptr));
  EXPECT_FALSE(access.Init(folder.WideFile("none").c_str(), nullptr));
  EXPECT_FALSE(access.Init(nullptr, nullptr));
  EXPECT_EQ(access.GetInputProfileInfo(), nullptr);

  ASSERT_TRUE(access.Init(folder.WideFile("scan.cmyk.icc").c_str(), nullptr));
  const CInputProfileInfo& info = *access.GetInputProfileInfo();
  EXPECT_EQ(std::u16string(info.FileName), u"scan.cmyk.icc");
  EXPECT_EQ(info.ColorKind, 1u);
  EXPECT_EQ(info.SortText[0], 0);
  const std::time_t now = std::time(nullptr);
  EXPECT_NEAR(info.FileTime.wYear, 1900 + std::gmtime(&now)->tm_year, 1);

  ASSERT_TRUE(access.Init(folder.WideFile("rgb").c_str(), nullptr));
  EXPECT_EQ(access.GetInputProfileInfo()->ColorKind, 2u);
  EXPECT_FALSE(access.Init(folder.WideFile("text").c_str(), nullptr));
  EXPECT_EQ(std::u16string(access.GetInputProfileInfo()->FileName), u"rgb") << "a failure leaves the earlier one";
}

TEST(InputProfile, SortsInDescendingOrder) {
  const auto named = [](std::u16string_view sortText, std::u16string_view fileName) {
    CInputProfileInfo info;
    sortText.copy(info.SortText, sortText.size());
    fileName.copy(info.FileName, fileName.size());
    return info;
  };
  const CInputProfileInfo a = named(u"", u"a.icc"), b = named(u"", u"b.icc"), first = named(u"z", u"a.icc");
  EXPECT_TRUE(b.IsOrderedBefore(a));
  EXPECT_FALSE(a.IsOrderedBefore(b));
  EXPECT_FALSE(a.IsOrderedBefore(a));
  EXPECT_TRUE(first.IsOrderedBefore(b)) << "the sort text comes first";
  EXPECT_FALSE(b.IsOrderedBefore(first));
  EXPECT_FALSE(a.IsOrderedBefore(CProfileDataInfo())) << "another kind of record";
}

}  // namespace
}  // namespace nvx::test
