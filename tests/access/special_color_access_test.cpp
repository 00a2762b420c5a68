#include "support/files.h"

#include <nvxprofile/large_parameter.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/special_color.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Words = std::vector<std::int32_t>;

// A loaded profile with one entry; tests change its payload in place.
class ConditionAccess : public testing::Test {
 protected:
  void Load(CProfileDataEntry* entry) {
    CProfileData data;
    ASSERT_TRUE(entry->DataToBuffer());
    data.SetProfileDataEntry(entry, nvx::kRouteMain);
    ASSERT_TRUE(CProfileFileQCT().SaveData(path_.c_str(), &data, nvx::kRouteMain));
    ASSERT_TRUE(access_.Init(path_.c_str(), &error_));
  }

  CSpecialColorInfoData& SpecialColors() {
    auto* const entry = access_.GetProfileData()->GetProfileDataEntryFromList(30);
    return *static_cast<CSpecialColorInfoEntry*>(entry)->GetSpecialColorInfoData();
  }
  CLargeParameterData& Lamp() {
    auto* const entry = access_.GetProfileData()->GetProfileDataEntryFromList(28);
    return *static_cast<CLargeParameterEntry*>(entry)->GetLargeParameterData();
  }

  // Comment and reason that a failed call left, which are then reset.
  std::u16string Comment(std::uint32_t reason) {
    EXPECT_EQ(error_.GetErrorReason(), reason);
    EXPECT_EQ(error_.GetSystemErrorCode(), 0u);
    const std::u16string comment = error_.GetErrorCommentW();
    error_.Reset();
    return comment;
  }

  nvx::test::TempFolder folder_;
  std::u16string path_ = folder_.WideFile("profile.qct");
  CProfileAccess access_;
  CError error_;
  std::int32_t size_ = 77;
  std::int32_t type_ = 78;
  std::int32_t value_ = 79;
  std::uint32_t count_ = 80;
};

template <class Table>
void Fill(Table& table, std::int32_t patterns, const Words& first, const Words& second) {
  table.SetPatternCount(patterns);
  for (std::size_t i = 0; i < first.size(); ++i) table.SetParameter(static_cast<std::int32_t>(i), first[i], 0);
  for (std::size_t i = 0; i < second.size(); ++i) table.SetParameter(static_cast<std::int32_t>(i), second[i], 1);
}

// Patterns for ink 9, for inks 3 and 7, and for ink 5, under the conditions 1200 to 1299 and 6. Level, density and
// number of the curve set.
CSpecialColorInfoEntry* SpecialColorEntry() {
  auto* const entry = new CSpecialColorInfoEntry;
  const Words patterns = {100, 0, 0,    0,           //
                          0,   0, 1200, 6, 2, 9, 0,  //
                          0,   0, 1200, 6, 2, 3, 7,  //
                          0,   0, 1200, 6, 2, 5, 0};
  const Words advice = {0, 0, 1, 40, 1,  //
                        0, 0, 0, 50, 0,  //
                        0, 0, 9, 60, 7};
  const std::uint32_t sizes[] = {25, 15};
  auto* const table = CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(1, sizes);
  Fill(*table, 3, patterns, advice);
  entry->GetSpecialColorInfoData()->AddTail(table);
  return entry;
}

CLargeParameterDataEntry* LampPatterns() {
  const Words patterns = {120, 0,                                            //
                          0,   0, 1, 2,  3, 100,  0, 0, 0, 0, 2, 5, 11, 12,  //
                          0,   0, 1, -1, 3, 1250, 0, 0, 0, 0, 1, 6, 21, 22};
  const std::uint32_t sizes[] = {30, 7};
  auto* const table = CLargeParameterDataEntry::CreateLargeParameterDataEntry(2, sizes);
  Fill(*table, 2, patterns, {10, 11, 12, 13, 20, 21, 22});
  return table;
}

CLargeParameterEntry* LampEntry() {
  auto* const entry = new CLargeParameterEntry;
  entry->GetLargeParameterData()->AddTail(LampPatterns());
  return entry;
}

TEST_F(ConditionAccess, WithoutAProfileNothingIsTouched) {
  CCurveData curves;
  EXPECT_FALSE(access_.GetSpecialColorRecommendDensity(value_, 1, 2, 3, &error_));
  EXPECT_FALSE(access_.GetSpecialColorRecommendLevel(value_, 1, 2, 0, nullptr, &error_));
  EXPECT_EQ(access_.GetSpecialColorVDCurve(size_, type_, 0, 1, 2, 3, &error_), nullptr);
  EXPECT_EQ(access_.GetSpecialColorVDCurveDataBuffer(&curves, 3, 0, size_, type_, &error_), nullptr);
  EXPECT_FALSE(access_.GetUVLamp500ParamCount(count_, 1, 2, 3, 4, &error_));
  EXPECT_FALSE(access_.GetUVLamp500Parameter(&value_, 1, 2, 3, 4, &error_));
  EXPECT_FALSE(access_.GetUVLamp500SplitCount(value_, 1, 2, 3, 4, &error_));
  EXPECT_FALSE(access_.GetUVLamp500SplitParamCount(value_, 0, 1, 2, 3, 4, &error_));
  EXPECT_EQ((Words{size_, type_, value_, static_cast<std::int32_t>(count_)}), (Words{77, 78, 79, 80}));
  EXPECT_EQ(Comment(0), u"");
}

TEST_F(ConditionAccess, SpecialColoursGetTheirAdvice) {
  Load(SpecialColorEntry());
  EXPECT_TRUE(access_.GetSpecialColorRecommendDensity(value_, 1234, 6, 5, &error_));
  EXPECT_EQ(value_, 60);
  std::int32_t colors[] = {7, 3, 9};
  EXPECT_TRUE(access_.GetSpecialColorRecommendLevel(value_, 1234, 6, 1, colors + 2, &error_));
  EXPECT_EQ(value_, 0) << "stored levels count from 1";
  EXPECT_TRUE(access_.GetSpecialColorRecommendLevel(value_, 1234, 6, 2, colors, &error_));
  EXPECT_EQ(value_, -1) << "a stored 0 is told as it is";
  value_ = 79;
  EXPECT_FALSE(access_.GetSpecialColorRecommendLevel(value_, 1300, 6, 2, colors, &error_));
  EXPECT_EQ(value_, -1);
  value_ = 79;
  EXPECT_FALSE(access_.GetSpecialColorRecommendDensity(value_, 1200, 6, 3, &error_));
  EXPECT_EQ(value_, -1);
  SpecialColors().DeleteSpecialColorInfo();
  value_ = 79;
  EXPECT_FALSE(access_.GetSpecialColorRecommendDensity(value_, 1200, 6, 9, &error_));
  EXPECT_EQ(value_, -1);
  EXPECT_EQ(Comment(0), u"");
}

TEST_F(ConditionAccess, SpecialColoursGetTheirCurves) {
  Load(SpecialColorEntry());
  const auto find = [&](std::int32_t ink, std::int32_t condition1 = 1200, std::int32_t extendInfo = 0) {
    size_ = 77;
    type_ = 78;
    return static_cast<std::uint8_t*>(
        access_.GetSpecialColorVDCurve(size_, type_, extendInfo, condition1, 6, ink, &error_));
  };
  CSpecialColorInfoDataEntry& table = *SpecialColors().Find(1);
  EXPECT_EQ(find(9), nullptr) << "an empty list";
  EXPECT_EQ(size_, 77);
  for (std::uint32_t set = 0; set < 2; ++set) {
    auto* const curves = new CCurveData;
    for (const std::uint32_t extendInfo : {4u, 12u}) {
      auto* const curve = new CCurveDataEntry8;
      curve->SetInkID(9 - 4 * set);
      curve->SetExtendInfo(extendInfo);
      curve->Add(10 * set + extendInfo);
      curves->AddTail(curve);
    }
    table.AddTailVD(curves);
  }
  ASSERT_NE(find(9), nullptr);
  EXPECT_EQ(*find(9), 4);
  EXPECT_EQ(*find(9, 1200, 12), 12);
  EXPECT_EQ((Words{size_, type_}), (Words{1, 1}));
  EXPECT_EQ(*find(5, 1200, 12), 22) << "of fewer sets than its number the last stands";
  EXPECT_EQ(find(5, 1300), nullptr);
  EXPECT_EQ((Words{size_, type_}), (Words{0, 0}));
  table.SetParameter(4, 0, 1);
  EXPECT_EQ(find(9), nullptr) << "no curve is recommended";
  EXPECT_EQ((Words{size_, type_}), (Words{77, 78}));
  EXPECT_EQ(Comment(0), u"");

  table.SetParameter(4, 1, 1);
  EXPECT_EQ(find(9, 1200, 5), nullptr);
  EXPECT_EQ(Comment(nvx::kReasonBadArgument), u"Profile: Parameter error InkColorCode = 9");
  EXPECT_EQ((Words{size_, type_}), (Words{0, 0}));
  CCurveDataEntry& curve = *table.CurvesVD().At(0)->FindInkIDEntry(9);
  curve.SetDataType(4);
  EXPECT_NE(find(9), nullptr);
  EXPECT_EQ(type_, 4);
  curve.SetDataType(5);
  EXPECT_EQ(find(9), nullptr);
  EXPECT_EQ(Comment(nvx::kReasonNotFound), u"Profile: Parameter error.InkColorCode = 9");
  EXPECT_EQ((Words{size_, type_}), (Words{1, 0}));
  curve.DeleteAllElement();
  EXPECT_EQ(find(9), nullptr);
  EXPECT_EQ(Comment(nvx::kReasonNotFound), u"Profile: Specify entry size is 0.InkColorCode = 9");
  EXPECT_EQ((Words{size_, type_}), (Words{0, 0}));
}

TEST_F(ConditionAccess, TheLampAnswersByPattern) {
  Load(LampEntry());
  EXPECT_TRUE(access_.GetUVLamp500ParamCount(count_, 1, 9, 3, 1250, &error_));
  EXPECT_EQ(count_, 3u);
  Words parameters(5, 99);
  EXPECT_TRUE(access_.GetUVLamp500Parameter(parameters.data(), 1, 9, 3, 1250, &error_));
  EXPECT_EQ(parameters, (Words{20, 21, 22, 99, 99}));
  EXPECT_TRUE(access_.GetUVLamp500SplitCount(value_, 1, 9, 3, 1250, &error_));
  EXPECT_EQ(value_, 6);
  EXPECT_TRUE(access_.GetUVLamp500SplitParamCount(value_, 1, 1, 9, 3, 1250, &error_));
  EXPECT_EQ(value_, 22);

  // No pattern: the splits fall back on the first one.
  EXPECT_FALSE(access_.GetUVLamp500ParamCount(count_, 7, 7, 7, 7, &error_));
  EXPECT_EQ(count_, 0u);
  EXPECT_FALSE(access_.GetUVLamp500Parameter(parameters.data(), 7, 7, 7, 7, &error_));
  EXPECT_EQ(parameters[0], 20);
  EXPECT_FALSE(access_.GetUVLamp500SplitCount(value_, 7, 7, 7, 7, &error_));
  EXPECT_EQ(value_, 5);
  EXPECT_FALSE(access_.GetUVLamp500SplitParamCount(value_, 1, 7, 7, 7, 7, &error_));
  EXPECT_EQ(value_, 12);
  EXPECT_EQ(Comment(0), u"");

  CLargeParameterDataEntry& table = *Lamp().Find(2);
  table.SetParameter(2 + 14 + 10, 1000, 0);
  parameters.assign(5, 99);
  EXPECT_FALSE(access_.GetUVLamp500Parameter(parameters.data(), 1, 9, 3, 1250, &error_));
  EXPECT_EQ(parameters, (Words{20, 21, 22, 99, 99})) << "a block that leads outside gives what there is";
  table.SetPatternCount(0);
  EXPECT_FALSE(access_.GetUVLamp500SplitCount(value_, 1, 9, 3, 1250, &error_));
  EXPECT_EQ(value_, 0);
  EXPECT_FALSE(access_.GetUVLamp500SplitParamCount(value_, 0, 1, 9, 3, 1250, &error_));
  EXPECT_EQ(value_, 0);
}

TEST_F(ConditionAccess, AFixedLampTableAnswersWhateverTheConditions) {
  Load(LampEntry());
  Lamp().AddTail(CLargeParameterDataEntry::CreateLargeParameterDataEntry(1, nullptr));
  EXPECT_TRUE(access_.GetUVLamp500ParamCount(count_, 7, 7, 7, 7, &error_));
  EXPECT_EQ(count_, 264u);
  Words parameters(265, 99);
  EXPECT_TRUE(access_.GetUVLamp500Parameter(parameters.data(), 7, 7, 7, 7, &error_));
  EXPECT_EQ((Words{parameters[132], parameters[133], parameters[134], parameters[264]}), (Words{0, 1, -1, 99}));
  EXPECT_TRUE(access_.GetUVLamp500SplitCount(value_, 7, 7, 7, 7, &error_));
  EXPECT_EQ(value_, 2);
  EXPECT_TRUE(access_.GetUVLamp500SplitParamCount(value_, 55, 7, 7, 7, 7, &error_));
  EXPECT_EQ(value_, 131);
  EXPECT_EQ(Comment(0), u"");
}

TEST_F(ConditionAccess, MissingLampTablesAreReported) {
  const auto comments = [&] {
    std::vector<std::u16string> texts;
    EXPECT_FALSE(access_.GetUVLamp500ParamCount(count_, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(nvx::kReasonNotFound));
    EXPECT_FALSE(access_.GetUVLamp500Parameter(&value_, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(nvx::kReasonNotFound));
    EXPECT_FALSE(access_.GetUVLamp500SplitCount(value_, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(nvx::kReasonNotFound));
    EXPECT_FALSE(access_.GetUVLamp500SplitParamCount(value_, 0, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(nvx::kReasonNotFound));
    EXPECT_EQ((Words{value_, static_cast<std::int32_t>(count_)}), (Words{79, 80}));
    return texts;
  };
  Load(SpecialColorEntry());
  EXPECT_EQ(comments(), std::vector<std::u16string>(4, u"Profile:Large Parameter Entry - none"));
  auto* const impostor = new CProfileDataEntry;
  impostor->SetUsedType(28);
  access_.GetProfileData()->SetProfileDataEntry(impostor, nvx::kRouteLargeParameter);
  EXPECT_EQ(comments(), std::vector<std::u16string>(4, u"Profile:Large Parameter Entry - none"));
  Load(new CLargeParameterEntry);
  const std::u16string none = u"Profile:Large Parameter Param Count - none";
  EXPECT_EQ(comments(), (std::vector<std::u16string>{none, u"Profile:Large Parameter Param - none", none, none}));
}

}  // namespace
