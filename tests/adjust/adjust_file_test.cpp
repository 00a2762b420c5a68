// Adjust files: syntax, values, and the structures that the readers fill.
#include "adjust/adjust_syntax.h"
#include "support/files.h"

#include <nvxprofile/adjust_file.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace nvx::test {
namespace {

using testing::Each;
using testing::ElementsAre;

using Ints = std::vector<int>;

constexpr int kNone = -99;

// A table of one text.
class Table {
 public:
  explicit Table(std::string_view text) { analyzer_.LoadText(text); }

  // The numbers of these keys, kNone for a key that has none.
  Ints Numbers(const std::vector<const char*>& keys) {
    Ints numbers(keys.size(), kNone);
    for (std::size_t i = 0; i < keys.size(); ++i) analyzer_.GetIntValue(keys[i], &numbers[i], error_);
    return numbers;
  }
  CAdjustFileAnalyzer& operator*() { return analyzer_; }
  CError& Error() { return error_; }
  std::u16string Message() const { return error_.GetErrorCommentW(); }

 private:
  CAdjustFileAnalyzer analyzer_;
  CError error_;
};

std::string Lines(int first, int last) {
  std::string text;
  for (int i = first; i <= last; ++i) text += "k" + std::to_string(i) + "=" + std::to_string(i) + "\n";
  return text;
}

TEST(AdjustSyntax, LinesEndAtCrAndLf) {
  Table table("\n\ra=1\rb=2\r\n\r\n\r\r\nc=3\n\nlast=4");
  EXPECT_THAT(table.Numbers({"a", "b", "c", "last"}), ElementsAre(1, 2, 3, kNone));
  Table ended("a=1\nb=2\x1A\nc=3\n");
  EXPECT_THAT(ended.Numbers({"a", "b", "c"}), ElementsAre(1, kNone, kNone)) << "byte 0x1A ends the input";
  Table many("#\n\n" + Lines(1, 98) + "\n\r\n" + Lines(99, 120));
  EXPECT_THAT(many.Numbers({"k99", "k100"}), ElementsAre(99, kNone)) << "a hundred lines that are not empty";
}

TEST(AdjustSyntax, KeysAndValues) {
  Table table("a=1\na=2\nb=c=d\n=5\ne=\nnovalue\n12\n#\n#f=1\ng =\t7\n h=1\nA=9\n");
  bool truth = false;
  EXPECT_FALSE((*table).GetBoolValue("b", &truth, table.Error()));
  EXPECT_THAT(table.Numbers({"a", "b", "", "e", "novalue", "12", "#", "f", "#f", "g", "g ", "h"}),
              ElementsAre(2, 0, 5, kNone, 0, 12, kNone, kNone, 1, kNone, 7, kNone));
}

TEST(AdjustSyntax, Numbers) {
  Table table(
      "a= +12x\nb=-7\nc=- 7\nd=x\ne=2147483648\nf=-2147483649\ng=99999999999999999999\nh=-2147483648\ni=+-3\nj=1.9\n");
  EXPECT_THAT(table.Numbers({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}),
              ElementsAre(12, -7, 0, 0, INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN, 0, 1));

  const auto plain = [](std::string_view text) { return adjust::ParseNumber(text).plain; };
  EXPECT_TRUE(plain("2147483647") && plain("-2147483648") && plain(" +7"));
  EXPECT_FALSE(plain("2147483648") || plain("-2147483649") || plain("") || plain("-") || plain("7 ") || plain("1.9"));
}

TEST(AdjustSyntax, TruthValues) {
  Table table("a=true\nb=false\nc=TRUE\nd=true \n");
  bool value = false;
  EXPECT_TRUE((*table).GetBoolValue("a", &value, table.Error()));
  EXPECT_TRUE(value);
  EXPECT_FALSE((*table).GetBoolValue("c", &value, table.Error()));
  EXPECT_EQ(table.Message(), u"Adjust file:Parameter none (key = c)");
  EXPECT_FALSE((*table).GetBoolValue("d", &value, table.Error()));
  EXPECT_TRUE(value);
  EXPECT_TRUE((*table).GetBoolValue("b", &value, table.Error()));
  EXPECT_FALSE(value);
}

TEST(AdjustSyntax, Lists) {
  std::string many = "many=1";
  for (int i = 1; i < 300; ++i) many += ",1";
  Table table("a=1,,3,\nb=300,70000,-1\n" + many + "\n");
  std::array<int, 6> numbers;
  numbers.fill(9);
  EXPECT_TRUE((*table).GetIntList("a", numbers.data(), 6, table.Error()));
  EXPECT_THAT(numbers, ElementsAre(1, 0, 3, 0, 9, 9));
  numbers.fill(9);
  EXPECT_TRUE((*table).GetIntList("a", numbers.data(), 2, table.Error()));
  EXPECT_TRUE((*table).GetIntList("b", numbers.data() + 2, 0, table.Error()));
  EXPECT_THAT(numbers, ElementsAre(1, 0, 9, 9, 9, 9));

  std::array<std::uint8_t, 257> bytes;
  bytes.fill(9);
  EXPECT_TRUE((*table).GetCurve8("b", bytes.data(), table.Error()));
  EXPECT_THAT(std::span(bytes).first(4), ElementsAre(44, 112, 255, 9));
  EXPECT_TRUE((*table).GetCurve8("many", bytes.data(), table.Error()));
  EXPECT_THAT(std::span(bytes).last(2), ElementsAre(1, 9));
  std::array<std::uint16_t, 257> words;
  words.fill(9);
  EXPECT_TRUE((*table).GetCurve16("b", words.data(), table.Error()));
  EXPECT_THAT(std::span(words).first(4), ElementsAre(300, 4464, 65535, 9));
  EXPECT_TRUE((*table).GetCurve16("many", words.data(), table.Error()));
  EXPECT_EQ(words[256], 9);
  EXPECT_FALSE((*table).GetCurve16("none", words.data(), table.Error()));
  EXPECT_EQ(table.Error().GetErrorReason(), kReasonNoKey);
}

TEST(AdjustSyntax, CurvesByAPartOfTheirKeys) {
  Table table("xCurve_2=2\n#Curve_9=9\nother=1\nCurve_10=10\n");
  std::array<std::uint8_t, 5 * 256> curves;
  curves.fill(7);
  EXPECT_TRUE((*table).GetCurves8("Curve", curves.data(), 0, table.Error()));
  EXPECT_TRUE((*table).GetCurves8("Curve", curves.data(), -1, table.Error()));
  EXPECT_THAT(curves, Each(7));
  EXPECT_TRUE((*table).GetCurves8("Curve", curves.data(), 4, table.Error()));
  EXPECT_EQ((Ints{curves[0], curves[1], curves[256], curves[512], curves[768 + 200], curves[1024]}),
            (Ints{9, 7, 10, 2, 200, 7}));

  // What was asked for and not found stays in the table, without a value; too late to hurt if enough stand before it.
  EXPECT_THAT(table.Numbers({"yCurve"}), ElementsAre(kNone));
  EXPECT_TRUE((*table).GetCurves8("Curve", curves.data(), 3, table.Error()));
  EXPECT_FALSE((*table).GetCurves8("Curve", curves.data(), 4, table.Error()));
  EXPECT_EQ(table.Message(), u"Adjust file:Parameter none (key = yCurve)");
}

class AdjustFiles : public testing::Test {
 protected:
  std::u16string Write(std::string_view text) {
    WriteBytes(folder_.File("a.txt"), Bytes(text.begin(), text.end()));
    return folder_.WideFile("a.txt");
  }
  template <class File>
  void Open(File& file, std::string_view text) {
    ASSERT_TRUE(file.Initialize(Write(text).c_str(), error_));
  }
  std::u16string Message() const { return error_.GetErrorCommentW(); }
  std::u16string NoKey(std::u16string_view key) const {
    return u"Adjust file:Parameter none (key = " + std::u16string(key) + u")";
  }

  TempFolder folder_;
  CError error_;
  CColorAdjustFile color_;
  CColorAdjustFileV3 colorV3_;
  CDeviceAdjustFile device_;
  CSpecialColorAdjustFile special_;
};

// All keys of both blocks but those in `without`, numbered in the order of the fields.
std::string ColorText(const std::vector<std::string>& without = {}) {
  std::string text = "ProfileCode=1\ng_TotalDensity=2\n";
  for (const std::string block : {"v", "r"}) {
    int value = block == "v" ? 10 : 20;
    for (const char* const name : {"Contrast", "Cyan", "CyanType", "Magenta", "MagentaType", "Yellow", "YellowType",
                                   "Black", "KCurve", "MixCurve"}) {
      const std::string key = block + "_" + name;
      if (std::find(without.begin(), without.end(), key) == without.end()) {
        text += key + "=" + std::to_string(value) + "\n";
      }
      ++value;
    }
    text += block + "_InkRatio=true\n";
  }
  return text;
}

TEST_F(AdjustFiles, WhatCannotBeOpened) {
  const std::u16string none = folder_.WideFile("none");
  const std::u16string directory = folder_.WideFile(".");
  const auto check = [&](auto& file, const std::u16string& notFound) {
    EXPECT_FALSE(file.Initialize(none.c_str(), error_));
    EXPECT_EQ(error_.GetErrorReason(), kReasonNoFile);
    EXPECT_EQ(Message(), notFound + none + u")");
    EXPECT_FALSE(file.Initialize(directory.c_str(), error_));
    EXPECT_EQ(error_.GetErrorReason(), kReasonCannotOpen);
    EXPECT_NE(error_.GetSystemErrorCode(), 0u);
    EXPECT_EQ(Message(), u"Adjust file: Cannot open file (file name:" + directory + u")");
  };
  check(color_, u"Color adjust file: File not found. (file name:");
  check(colorV3_, u"Color adjust file: File not found. (file name:");
  check(device_, u"Device adjust file: File not found.(file name:");
  check(special_, u"Special Color adjust file: File not found. (file name:");

  // A file that is not there leaves the old table, one that cannot be opened an empty one.
  Open(special_, "VDApplyWay_0001=2\n");
  EXPECT_FALSE(special_.Initialize(none.c_str(), error_));
  EXPECT_EQ(special_.GetVDApplyWay(1, error_), 2);
  EXPECT_FALSE(special_.Initialize(directory.c_str(), error_));
  EXPECT_EQ(special_.GetVDApplyWay(1, error_), 0);
  EXPECT_EQ(Message(), NoKey(u"VDApplyWay_0001"));
}

TEST_F(AdjustFiles, NothingReadNothingReported) {
  COLOR_ADJUST data;
  COLOR_ADJUST_V3 dataV3;
  DEVICE_ADJUST_PARAM param;
  SPECIAL_COLOR_ADJUST inks;
  std::uint8_t bytes[256];
  std::uint16_t words[256];
  for (int pass = 0; pass < 2; ++pass) {
    const bool opened = pass == 1;
    EXPECT_FALSE(color_.GetColorAdjustData(opened ? nullptr : &data, error_));
    EXPECT_FALSE(color_.GetInkLimitCurve(opened ? nullptr : bytes, 1, error_));
    EXPECT_FALSE(colorV3_.GetColorAdjustData(opened ? nullptr : &dataV3, error_));
    EXPECT_FALSE(colorV3_.GetLinearizationCurve(opened ? nullptr : words, 1, error_));
    EXPECT_FALSE(device_.GetDeviceAdjustParam(opened ? nullptr : &param, error_));
    EXPECT_FALSE(special_.GetColorAdjustData(opened ? nullptr : &inks, error_));
    EXPECT_FALSE(special_.GetSpecialDensity(opened ? nullptr : &inks, error_));
    EXPECT_FALSE(special_.GetInkLimitCurve(opened ? nullptr : words, 1, error_));
    EXPECT_EQ(error_.GetErrorReason(), 0u);
    Open(color_, "VDApplyWay_0001=1\n");
    Open(colorV3_, "VDApplyWay_0001=1\n");
    Open(device_, "VDApplyWay_0001=1\n");
    Open(special_, "VDApplyWay_0001=1\n");
  }
  EXPECT_FALSE(special_.GetVariableCurve(1, 3, nullptr, error_));
  EXPECT_EQ(error_.GetErrorReason(), 0u);
}

TEST_F(AdjustFiles, ColorBlocks) {
  COLOR_ADJUST data;
  Open(color_, ColorText());
  ASSERT_TRUE(color_.GetColorAdjustData(&data, error_));
  EXPECT_EQ((Ints{data.ProfileCode, data.TotalDensity}), (Ints{1, 2}));
  const auto block = [](const auto& b) {
    return Ints{b.Contrast,   b.Cyan,  b.CyanType,  b.Magenta,     b.MagentaType, b.Yellow,
                b.YellowType, b.Black, b.KCurve[0], b.MixCurve[0], b.InkRatio};
  };
  EXPECT_THAT(block(data.V), ElementsAre(10, 11, 12, 13, 14, 15, 16, 17, 18, 19, true));
  EXPECT_THAT(block(data.R), ElementsAre(20, 21, 22, 23, 24, 25, 26, 27, 28, 29, true));
  EXPECT_EQ(error_.GetErrorReason(), 0u);

  COLOR_ADJUST_V3 dataV3;
  Open(colorV3_, ColorText({"r_YellowType"}) +
                     "r_YellowType=26\nr_KCurve=40000\nLinearCurve_0007=1,65535\n"
                     "LimitCurve_03_0012=8\n");
  ASSERT_TRUE(colorV3_.GetColorAdjustData(&dataV3, error_));
  EXPECT_EQ(dataV3.R.YellowType, 26);
  EXPECT_EQ(dataV3.R.KCurve[0], 40000);
  std::uint16_t curve[256] = {};
  EXPECT_TRUE(colorV3_.GetLinearizationCurve(curve, 7, error_));
  EXPECT_EQ(curve[1], 65535);
  EXPECT_TRUE(colorV3_.GetMultiInkLimitCurve(curve, 12, 3, error_));
  EXPECT_EQ(curve[0], 8);
  EXPECT_EQ(curve[1], 65535);
  EXPECT_FALSE(colorV3_.GetMultiInkLimitCurve(curve, 12345, 123, error_));
  EXPECT_EQ(Message(), NoKey(u"LimitCurve_123_12345"));
}

TEST_F(AdjustFiles, AMissingColorKeyEndsAfterItsBlock) {
  COLOR_ADJUST data;
  Open(color_, ColorText({"v_Black"}));
  EXPECT_FALSE(color_.GetColorAdjustData(&data, error_));
  EXPECT_EQ(Message(), NoKey(u"v_Black"));
  EXPECT_EQ(data.V.MixCurve[0], 19);
  EXPECT_EQ(data.R.Contrast, 0);
  Open(color_, ColorText({"v_Black", "v_MixCurve", "r_Cyan"}));
  EXPECT_FALSE(color_.GetColorAdjustData(&data, error_));
  EXPECT_EQ(Message(), NoKey(u"v_MixCurve"));
  Open(color_, "ProfileCode=4\nv_Contrast=5\n");
  data = {};
  EXPECT_FALSE(color_.GetColorAdjustData(&data, error_));
  EXPECT_EQ(Message(), NoKey(u"g_TotalDensity"));
  EXPECT_EQ(data.ProfileCode, 4);
  EXPECT_EQ(data.V.Contrast, 0);
}

TEST_F(AdjustFiles, ColorCurves) {
  struct Reader : CColorAdjustFile {
    using CColorAdjustFile::GetGrayBalanceCurves;
    using CColorAdjustFile::GetInkLimitCurves;
  } file;
  Open(file, "LimitCurve_0002=5\nLimitCurve_01_0002=6\nGrayCurve_0001=3,4\n");
  std::array<std::uint8_t, 4 * 256 + 1> curves;
  curves.fill(9);
  EXPECT_TRUE(file.GetInkLimitCurves(curves.data(), 0, error_));
  EXPECT_THAT(curves, Each(9));
  EXPECT_TRUE(file.GetInkLimitCurves(curves.data(), 3, error_));
  EXPECT_EQ((Ints{curves[0], curves[1], curves[256], curves[2 * 256 + 255], curves[3 * 256]}), (Ints{5, 0, 6, 255, 9}));
  EXPECT_TRUE(file.GetGrayBalanceCurves(curves.data(), error_));
  EXPECT_EQ((Ints{curves[1], curves[3 * 256 + 100], curves[4 * 256]}), (Ints{4, 100, 9}));
  EXPECT_FALSE(file.GetGrayBalanceCurves(nullptr, error_));
  EXPECT_TRUE(file.GetGrayBalanceCurve(curves.data() + 512, 1, error_));
  EXPECT_EQ(curves[513], 4);
  EXPECT_EQ(curves[514], 2);
  EXPECT_TRUE(file.GetInkLimitCurve(curves.data(), 2, error_));
  EXPECT_FALSE(file.GetInkLimitCurve(curves.data(), 3, error_));
  EXPECT_EQ(Message(), NoKey(u"LimitCurve_0003"));
}

TEST_F(AdjustFiles, DeviceParameters) {
  const std::string required =
      "FeedAdjust[WhichUse]=1\nFeedAdjust[Value]=2\nHeater1[WhichUse]=3\nHeater1[Value]=4\nHeater2[WhichUse]=5\n";
  DEVICE_ADJUST_PARAM param;
  Open(device_, required + "Heater2[Value]=6\nHeater4[Value]=10\nMediaFeedSpeed[WhichUse]=11\nUvMode[Value]=14\n");
  param.Heater3Value = 99;
  ASSERT_TRUE(device_.GetDeviceAdjustParam(&param, error_));
  EXPECT_EQ(Message(), NoKey(u"UvMode[WhichUse]"));
  EXPECT_EQ((Ints{param.FeedAdjustWhichUse, param.Heater2Value, param.Heater3Value, param.Heater4Value,
                  param.MediaFeedSpeedWhichUse, param.UvModeValue}),
            (Ints{1, 6, 0, 10, 11, 14}));

  Open(device_, required + "Heater3[Value]=8\n");
  param = {};
  EXPECT_FALSE(device_.GetDeviceAdjustParam(&param, error_));
  EXPECT_EQ(Message(), NoKey(u"Heater2[Value]"));
  EXPECT_EQ(param.Heater2WhichUse, 5);
  EXPECT_EQ(param.Heater3Value, 0);
}

TEST_F(AdjustFiles, SpecialInks) {
  SPECIAL_COLOR_ADJUST data;
  data.Inks[0].Reserved[0] = 7;
  Open(special_, "SpecialInkset=4\nSpecialInkCount=3\nSpecialInk=12,13\ng_SpecialDensity_0012=-5\n");
  ASSERT_TRUE(special_.GetColorAdjustData(&data, error_));
  EXPECT_EQ(error_.GetErrorReason(), 0u);
  EXPECT_EQ((Ints{data.Inkset, data.InkCount, data.Inks[1].InkCode, data.Inks[2].InkCode}), (Ints{4, 3, 13, 0}));
  data.Inks[1].Density = 8;
  data.Inks[3].Density = 8;
  ASSERT_TRUE(special_.GetSpecialDensity(&data, error_));
  EXPECT_EQ((Ints{data.Inks[0].Density, data.Inks[1].Density, data.Inks[3].Density, data.Inks[0].Reserved[0]}),
            (Ints{-5, 0, 8, 7}));
  EXPECT_EQ(Message(), NoKey(u"g_SpecialDensity_0000"));

  for (const auto& [count, inks, kept] :
       {std::tuple("9", "1,2,3,4,5,6,7,8,9", 8), {"8", "1,2,3,4,5,6,7,8,9", 8}, {"0", "5", 0}}) {
    Open(special_, "SpecialInkset=4\nSpecialInkCount=" + std::string(count) + "\nSpecialInk=" + inks + "\n");
    ASSERT_TRUE(special_.GetColorAdjustData(&data, error_));
    EXPECT_EQ((Ints{data.InkCount, data.Inks[0].InkCode, data.Inks[7].InkCode}), (Ints{kept, 1, 8})) << count;
  }
  data.Inks[0].Density = 6;
  EXPECT_TRUE(special_.GetSpecialDensity(&data, error_));
  EXPECT_EQ(data.Inks[0].Density, 6);
  data.InkCount = 1000;
  EXPECT_TRUE(special_.GetSpecialDensity(&data, error_));
}

TEST_F(AdjustFiles, VariableCurves) {
  Open(special_,
       "VDApplyWay_0001=1\nVDApplyWay_0002=2\nVDApplyWay_0003=3\nVD01Curve_0001=11\nVD02Curve_0001=12\n"
       "VD03Curve_0001=13\nVD03Curve_0002=23\nVD03Curve_0003=33\nVD03Curve_0004=43\nLimitCurve_0001=50\n");
  const auto curve = [&](int ink, std::uint32_t dotSize) {
    std::uint16_t samples[256] = {};
    return special_.GetVariableCurve(ink, dotSize, samples, error_) ? samples[0] : 0;
  };
  EXPECT_EQ((Ints{curve(1, 3), curve(1, 4), curve(1, 5), curve(1, 0), curve(2, 0), curve(3, 0)}),
            (Ints{11, 12, 13, 13, 23, 0}));
  EXPECT_EQ(error_.GetErrorReason(), 0u);
  EXPECT_EQ(curve(4, 0), 0);
  EXPECT_EQ(Message(), NoKey(u"VDApplyWay_0004"));
  EXPECT_EQ(curve(2, 3), 0);
  EXPECT_EQ(Message(), NoKey(u"VD01Curve_0002"));
  std::uint16_t limit[256] = {};
  EXPECT_TRUE(special_.GetInkLimitCurve(limit, 1, error_));
  EXPECT_EQ(limit[0], 50);
}

}  // namespace
}  // namespace nvx::test
