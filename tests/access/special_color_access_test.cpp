#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/large_parameter.h>
#include <nvxprofile/special_color.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nvx::test {
namespace {

// A loaded profile with one entry; tests change its payload in place.
class ConditionAccess : public testing::Test {
 protected:
  void Load(std::uint32_t usedType, const Bytes& form) {
    ASSERT_TRUE(InitFromEntries(access_, {{usedType, NewEntry(usedType)->GetFormatType(), form}}));
  }

  template <class Entry>
  Entry& Loaded(std::uint32_t usedType) {
    return dynamic_cast<Entry&>(*access_.GetProfileData()->GetProfileDataEntryFromList(usedType));
  }
  CSpecialColorInfoData& SpecialColors() { return *Loaded<CSpecialColorInfoEntry>(30).GetSpecialColorInfoData(); }
  CLargeParameterData& Lamp() { return *Loaded<CLargeParameterEntry>(28).GetLargeParameterData(); }

  // What the lamp queries but that of the parameters say: result and number of each.
  Words LampAnswers(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d, std::int32_t split = 1) {
    Words answers{access_.GetUVLamp500ParamCount(count_, a, b, c, d, &error_), static_cast<std::int32_t>(count_)};
    answers.push_back(access_.GetUVLamp500SplitCount(value_, a, b, c, d, &error_));
    answers.push_back(value_);
    answers.push_back(access_.GetUVLamp500SplitParamCount(value_, split, a, b, c, d, &error_));
    answers.push_back(value_);
    return answers;
  }

  // The comment that a call left which failed for this reason; then it is reset.
  std::u16string Comment(std::uint32_t reason) {
    const std::u16string comment = error_.GetErrorCommentW();
    ExpectError(error_, reason, comment);
    error_.Reset();
    return comment;
  }

  CProfileAccess access_;
  CError error_;
  std::int32_t size_ = 77;
  std::int32_t type_ = 78;
  std::int32_t value_ = 79;
  std::uint32_t count_ = 80;
};

// Patterns for ink 9, for inks 3 and 7, and for ink 5, under the conditions 1200 to 1299 and 6. Level, density and
// number of the curve set.
Bytes AdviceForm() {
  const Words patterns = {100, 3, 0,    0,           //
                          0,   0, 1200, 6, 2, 9, 0,  //
                          0,   0, 1200, 6, 2, 3, 7,  //
                          0,   0, 1200, 6, 2, 5, 0};
  const Words advice = {0, 0, 1, 40, 1,  //
                        0, 0, 0, 50, 0,  //
                        0, 0, 9, 60, 7};
  ByteBuilder form = SpecialColorHeader(0, 1).Append(SpecialColorRecord(1, 4 + 100 + 4 + 60, 3));
  return form.Append(SpecialColorArrays(patterns, advice));
}

Bytes LampForm() {
  const Words patterns = {120, 2,                                            //
                          0,   0, 1, 2,  3, 100,  0, 0, 0, 0, 2, 5, 11, 12,  //
                          0,   0, 1, -1, 3, 1250, 0, 0, 0, 0, 1, 6, 21, 22};
  ByteBuilder form = ByteBuilder().Text("MRAP").U32(16, 1, 0).Text("HMRP").U32(20, 2, 4 + 120 + 4 + 28, 2);
  return Add(Add(form.Text("HERP"), patterns).Text("EMRP"), {10, 11, 12, 13, 20, 21, 22});
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
  Load(30, AdviceForm());
  EXPECT_TRUE(access_.GetSpecialColorRecommendDensity(value_, 1234, 6, 5, &error_));
  EXPECT_EQ(value_, 60);
  std::int32_t colors[] = {7, 3, 9};
  EXPECT_TRUE(access_.GetSpecialColorRecommendLevel(value_, 1234, 6, 1, colors + 2, &error_));
  EXPECT_EQ(value_, 0) << "stored levels count from 1";
  EXPECT_TRUE(access_.GetSpecialColorRecommendLevel(value_, 1234, 6, 2, colors, &error_));
  EXPECT_EQ(value_, -1) << "a stored 0 is told as it is";
  Words missing(3, 79);
  EXPECT_FALSE(access_.GetSpecialColorRecommendLevel(missing[0], 1300, 6, 2, colors, &error_));
  EXPECT_FALSE(access_.GetSpecialColorRecommendDensity(missing[1], 1200, 6, 3, &error_));
  SpecialColors().DeleteSpecialColorInfo();
  EXPECT_FALSE(access_.GetSpecialColorRecommendDensity(missing[2], 1200, 6, 9, &error_));
  EXPECT_EQ(missing, Words(3, -1));
  EXPECT_EQ(Comment(0), u"");
}

TEST_F(ConditionAccess, SpecialColoursGetTheirCurves) {
  Load(30, AdviceForm());
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
  for (const std::int32_t number : {0, -1}) {
    table.SetParameter(4, number, 1);
    EXPECT_EQ(find(9), nullptr) << "no curve is recommended";
  }
  EXPECT_EQ((Words{size_, type_}), (Words{77, 78}));
  EXPECT_EQ(Comment(0), u"");

  table.SetParameter(4, 1, 1);
  EXPECT_EQ(find(9, 1200, 5), nullptr);
  EXPECT_EQ(Comment(kReasonBadArgument), u"Profile: Parameter error InkColorCode = 9");
  EXPECT_EQ((Words{size_, type_}), (Words{0, 0}));
  CCurveDataEntry& curve = *table.CurvesVD().At(0)->FindInkIDEntry(9);
  curve.SetDataType(4);
  EXPECT_NE(find(9), nullptr);
  EXPECT_EQ(type_, 4);
  curve.SetDataType(5);
  EXPECT_EQ(find(9), nullptr);
  EXPECT_EQ(Comment(kReasonNotFound), u"Profile: Parameter error.InkColorCode = 9");
  EXPECT_EQ((Words{size_, type_}), (Words{1, 0}));
  curve.DeleteAllElement();
  EXPECT_EQ(find(9), nullptr);
  EXPECT_EQ(Comment(kReasonNotFound), u"Profile: Specify entry size is 0.InkColorCode = 9");
  EXPECT_EQ((Words{size_, type_}), (Words{0, 0}));
}

TEST_F(ConditionAccess, TheLampAnswersByPattern) {
  Load(28, LampForm());
  Words parameters(5, 99);
  EXPECT_EQ(LampAnswers(1, 9, 3, 1250), (Words{true, 3, true, 6, true, 22}));
  EXPECT_TRUE(access_.GetUVLamp500Parameter(parameters.data(), 1, 9, 3, 1250, &error_));
  EXPECT_EQ(parameters, (Words{20, 21, 22, 99, 99}));
  EXPECT_EQ(LampAnswers(7, 7, 7, 7), (Words{false, 0, false, 5, false, 12})) << "splits fall back on the first pattern";
  EXPECT_FALSE(access_.GetUVLamp500Parameter(parameters.data(), 7, 7, 7, 7, &error_));
  EXPECT_EQ(parameters[0], 20);
  EXPECT_EQ(Comment(0), u"");

  CLargeParameterDataEntry& table = *Lamp().Find(2);
  table.SetParameter(2 + 14 + 10, 1000, 0);
  parameters.assign(5, 99);
  EXPECT_FALSE(access_.GetUVLamp500Parameter(parameters.data(), 1, 9, 3, 1250, &error_));
  EXPECT_EQ(parameters, (Words{20, 21, 22, 99, 99})) << "a block that leads outside gives what there is";
  table.SetPatternCount(0);
  EXPECT_EQ(LampAnswers(1, 9, 3, 1250, 0), (Words{false, 0, false, 0, false, 0}));
}

TEST_F(ConditionAccess, AFixedLampTableAnswersWhateverTheConditions) {
  Load(28, LampForm());
  Lamp().AddTail(CLargeParameterDataEntry::CreateLargeParameterDataEntry(1, nullptr));
  EXPECT_EQ(LampAnswers(7, 7, 7, 7, 55), (Words{true, 264, true, 2, true, 131}));
  Words parameters(265, 99);
  EXPECT_TRUE(access_.GetUVLamp500Parameter(parameters.data(), 7, 7, 7, 7, &error_));
  EXPECT_EQ((Words{parameters[132], parameters[133], parameters[134], parameters[264]}), (Words{0, 1, -1, 99}));
  EXPECT_EQ(Comment(0), u"");
}

TEST_F(ConditionAccess, MissingLampTablesAreReported) {
  const auto comments = [&] {
    std::vector<std::u16string> texts;
    EXPECT_FALSE(access_.GetUVLamp500ParamCount(count_, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(kReasonNotFound));
    EXPECT_FALSE(access_.GetUVLamp500Parameter(&value_, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(kReasonNotFound));
    EXPECT_FALSE(access_.GetUVLamp500SplitCount(value_, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(kReasonNotFound));
    EXPECT_FALSE(access_.GetUVLamp500SplitParamCount(value_, 0, 1, 2, 3, 4, &error_));
    texts.push_back(Comment(kReasonNotFound));
    EXPECT_EQ((Words{value_, static_cast<std::int32_t>(count_)}), (Words{79, 80}));
    return texts;
  };
  const std::vector<std::u16string> noEntry(4, u"Profile:Large Parameter Entry - none");
  Load(30, AdviceForm());
  EXPECT_EQ(comments(), noEntry);
  auto* const impostor = new CProfileDataEntry;
  impostor->SetUsedType(28);
  access_.GetProfileData()->SetProfileDataEntry(impostor, kRouteLargeParameter);
  EXPECT_EQ(comments(), noEntry);
  Load(28, ByteBuilder().Text("MRAP").U32(16, 0, 0));
  const std::u16string none = u"Profile:Large Parameter Param Count - none";
  EXPECT_EQ(comments(), (std::vector<std::u16string>{none, u"Profile:Large Parameter Param - none", none, none}));
}

}  // namespace
}  // namespace nvx::test
