// What the inspection says of adjust files.
#include <nvxprofile/adjust_inspection.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nvx::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Remarks(std::string_view text, std::optional<AdjustKind> kind = std::nullopt) {
  std::vector<std::string> remarks;
  for (const AdjustRemark& remark : InspectAdjustText(text, kind).remarks) {
    remarks.push_back(std::to_string(remark.line) + " " + remark.key + ": " + remark.text);
  }
  return remarks;
}

TEST(AdjustInspection, GuessesTheKind) {
  const auto kind = [](std::string_view text) { return InspectAdjustText(text, std::nullopt).kind; };
  EXPECT_EQ(kind("x=1\n"), std::nullopt);
  EXPECT_EQ(kind("ProfileCode=1\nv_KCurve=255,0\n"), AdjustKind::kColor);
  EXPECT_EQ(kind("ProfileCode=1\nv_KCurve=0,256\n"), AdjustKind::kColorV3);
  EXPECT_EQ(kind("ProfileCode=1\nLinearCurve_0001=0\n"), AdjustKind::kColorV3);
  EXPECT_EQ(kind("ProfileCode=1\nLimitCurve_0001=0\nv_KCurve=256\n"), AdjustKind::kColor);
  EXPECT_EQ(kind("SpecialInkset=1\nLimitCurve_0001=0\n"), AdjustKind::kSpecial);
  EXPECT_EQ(kind("Heater1[Value]=1\n"), AdjustKind::kDevice);
  EXPECT_EQ(kind("Heater1[Value]=1\nSpecialInkset=1\nLimitCurve_0001=0\n"), AdjustKind::kSpecial) << "most keys win";
}

TEST(AdjustInspection, KeysCarryTheirNumbers) {
  const AdjustInspection found = InspectAdjustText(
      "LimitCurve_03_0012=1\nLimitCurve_3_12=1\nLimitCurve_0012=1\nLinearCurve_12345=1\nLinearCurve_012345=1\n",
      AdjustKind::kColorV3);
  ASSERT_EQ(found.keys.size(), 2u);
  EXPECT_EQ(found.keys[0].index, 3);
  EXPECT_EQ(found.keys[0].ink, 12);
  EXPECT_EQ(found.keys[1].ink, 12345);
  EXPECT_EQ(found.keys[1].index, std::nullopt);
}

TEST(AdjustInspection, LinesThatAreLost) {
  EXPECT_THAT(Remarks("Heater1[Value]=1\r\n\r\nHeater2[Value]=2"),
              ElementsAre("3 Heater2[Value]: the last line has no line end and is dropped"));
  EXPECT_THAT(Remarks("Heater1[Value]=1\nHeater2[Value]=2\x1A\nHeater3[Value]=2\n"),
              ElementsAre("2 Heater2[Value]: the last line has no line end and is dropped",
                          "2 : byte 0x1A ends the file here"));
  EXPECT_THAT(Remarks("Heater1[Value]=1\nHeater2[Value]=1\nHeater1[Value]=2\n"),
              ElementsAre("1 Heater1[Value]: line 3 has the same key and takes its place"));
  std::string many = "Heater1[Value]=1\n";
  for (int i = 1; i < 100; ++i) many += "#\n";
  EXPECT_THAT(Remarks(many), IsEmpty());
  EXPECT_THAT(Remarks(many + "\nHeater2[Value]=1\n#\n"),
              ElementsAre("102 : only 100 lines are read; from here on 2 are dropped"));
}

TEST(AdjustInspection, KeysThatNothingReads) {
  EXPECT_THAT(Remarks("Heater1[Value] =1\n#Heater2[Value]=1\nheater1[value]=1\nHeater2[Value]\n", AdjustKind::kDevice),
              ElementsAre("1 Heater1[Value] : blanks belong to the key, so nothing reads it",
                          "2 #Heater2[Value]: is no comment, which is a line of \"#\" alone; nothing reads it",
                          "3 heater1[value]: nothing reads this key",
                          "4 Heater2[Value]: has no \"=\": the whole line is the value",
                          "4 Heater2[Value]: is no whole number and reads as 0"));
  EXPECT_THAT(Remarks("LimitCurve_01_0002=1\n", AdjustKind::kColor),
              ElementsAre("1 LimitCurve_01_0002: is read only where curves are sought by a part of their keys"));
}

TEST(AdjustInspection, ValuesThatDoNotReadAsTheyStand) {
  std::string curve = "v_KCurve=0";
  for (int i = 1; i < 256; ++i) curve += "," + std::to_string(i);
  EXPECT_THAT(Remarks(curve + "\nProfileCode= 7\nv_InkRatio=true\n", AdjustKind::kColor), IsEmpty());
  EXPECT_THAT(
      Remarks(curve + ",300,1\nr_KCurve=300,-1,x\nv_InkRatio=TRUE\nProfileCode=12a\nv_Cyan=\n", AdjustKind::kColor),
      ElementsAre("1 v_KCurve: of 258 items the first 256 are read",
                  "2 r_KCurve: item 1, \"300\", reads as 44, and 2 more do not read as they stand",
                  "2 r_KCurve: has 3 of 256 items; the other samples stay as the caller has them",
                  "3 v_InkRatio: is neither true nor false and counts as missing",
                  "4 ProfileCode: is no whole number and reads as 12", "5 v_Cyan: has no value and counts as missing"));
  EXPECT_THAT(Remarks("SpecialInkCount=9\nSpecialInk=1,99999999999\n", AdjustKind::kSpecial),
              ElementsAre("1 SpecialInkCount: more than 8 inks: only the first 8 are read",
                          "2 SpecialInk: item 2, \"99999999999\", reads as 2147483647",
                          "2 SpecialInk: has 2 items for 9 inks"));
}

}  // namespace
}  // namespace nvx::test
