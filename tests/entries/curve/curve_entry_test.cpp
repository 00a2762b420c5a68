#include "support/curve_builder.h"
#include "support/entry_bytes.h"

#include <nvxprofile/curve_entry.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

namespace nvx::test {
namespace {

using testing::ElementsAre;

constexpr auto k8 = CCurveDataEntry::kSamples8;
constexpr auto k16 = CCurveDataEntry::kSamples16;

Bytes OneCurve(std::uint32_t type, const Bytes& samples) {
  return CurveSetHeader(2, 1)
      .Append(CurveHeader({.ink = 1, .type = type, .size = static_cast<std::uint32_t>(samples.size())}))
      .Text("SDEC")
      .Append(samples);
}

template <class Entry>
void Add(Entry& entry, std::unique_ptr<CCurveDataEntry> curve) {
  entry.GetCurveData()->AddTail(curve.release());
}

TEST(CurveEntry, AFailedParseLeavesWhatCameBefore) {
  CLinearizationEntry entry;
  ASSERT_TRUE(Parse(entry, TwoCurves()));

  Bytes broken = TwoCurves();
  broken[303] = 'x';  // the second data block
  EXPECT_FALSE(Parse(entry, broken));
  EXPECT_EQ(entry.GetCurveData()->GetCount(), 1);
  EXPECT_EQ(entry.GetCurveData()->GetCurveDataSizeType(), 1u);

  broken[164] = 'x';  // the second record: no record counts
  EXPECT_FALSE(Parse(entry, broken));
  EXPECT_EQ(entry.GetCurveData()->GetCount(), 0);

  ASSERT_TRUE(Parse(entry, TwoCurves()));
  entry.DeleteBuffer();
  EXPECT_FALSE(entry.BufferToData());
  EXPECT_EQ(entry.GetCurveData()->GetCount(), 2);

  EXPECT_FALSE(Parse(entry, {' ', 'F', 'C', 'x'}));
  EXPECT_EQ(entry.GetCurveData()->GetCount(), 0);
}

TEST(CurveEntry, EveryParseGivesWhatAFreshOneGives) {
  // Shapes that follow each other: same, other width, other size, fewer and more curves, none.
  const Bytes narrow = OneCurve(1, {1, 2, 3, 4}), wide = OneCurve(2, {1, 2, 3, 4});
  const Bytes longer = OneCurve(2, {9, 8, 7, 6, 5, 4}), hollow = OneCurve(2, {}), none = CurveSetHeader(3, 0);
  CInkLimitEntry entry;
  for (const Bytes& bytes : {narrow, narrow, wide, TwoCurves(), narrow, TwoCurves(), TwoCurves(), longer, wide, hollow,
                             none, longer, TwoCurves()}) {
    CInkLimitEntry fresh;
    ASSERT_TRUE(Parse(entry, bytes) && Parse(fresh, bytes));
    EXPECT_EQ(entry.GetCurveData()->GetCurveDataSizeType(),
              bytes == none ? 2u : fresh.GetCurveData()->GetCurveDataSizeType());
    ASSERT_TRUE(entry.DataToBuffer());
    EXPECT_EQ(BytesOf(entry), bytes);
  }
}

TEST(CurveEntry, AParseUndoesWhatWasDoneToTheCurves) {
  CLinearizationEntry entry;
  ASSERT_TRUE(Parse(entry, TwoCurves()));
  CCurveDataEntry* const cyan = entry.GetCurveData()->FindInkIDEntry(1);
  cyan->SetAt(1, 7);
  cyan->SetInkID(0x155);
  cyan->SetInkName("A name that is longer than the one before");
  cyan->SetDataType(2);
  entry.GetCurveData()->FindInkIDEntry(2)->SetDataType(1);
  ASSERT_TRUE(entry.BufferToData());
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), TwoCurves());
}

TEST(CurveEntry, NarrowCurvesMarkedAsWideComeBackAsWideOnes) {
  CLinearizationEntry entry;
  ASSERT_TRUE(Parse(entry, OneCurve(1, {0x34, 0x12, 0xFF, 0x00})));
  entry.GetCurveData()->FindInkIDEntry(1)->SetDataType(2);
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry)[32 + 32], 2);
  ASSERT_TRUE(entry.BufferToData());
  CCurveDataEntry& curve = *entry.GetCurveData()->FindInkIDEntry(1);
  ASSERT_NE(dynamic_cast<CCurveDataEntry16*>(&curve), nullptr);
  EXPECT_THAT(SamplesOf(curve), ElementsAre(0x1234, 0x00FF));
}

TEST(CurveEntry, NeverTouchesBorrowedCurvesOrCurvesOfAnotherClass) {
  struct OwnCurve : CCurveDataEntry16 {
    explicit OwnCurve(bool& gone) : gone_(gone) { GetBuffer(4); }
    ~OwnCurve() override { gone_ = true; }
    bool& gone_;
  };
  bool gone = false;
  const Bytes bytes = OneCurve(2, {1, 2, 3, 4});
  CLinearizationEntry owner;
  owner.GetCurveData()->AddTail(new OwnCurve(gone));
  ASSERT_TRUE(Parse(owner, bytes));
  EXPECT_TRUE(gone);
  const CCurveDataEntry& renewed = *owner.GetCurveData()->FindInkIDEntry(1);
  EXPECT_EQ(typeid(renewed), typeid(CCurveDataEntry16));

  const auto lent = MakeCurve(k16, 9, {50, 60});
  CLinearizationEntry borrower;
  borrower.GetCurveData()->SetAutoDelete(false);
  borrower.GetCurveData()->AddTail(lent.get());
  ASSERT_TRUE(Parse(borrower, bytes));
  const std::unique_ptr<CCurveDataEntry> made(borrower.GetCurveData()->FindInkIDEntry(1));
  ASSERT_TRUE(made);
  EXPECT_THAT(SamplesOf(*lent), ElementsAre(50, 60));
  EXPECT_EQ(lent->GetInkID(), 9u);
  ASSERT_TRUE(borrower.BufferToData());
  const std::unique_ptr<CCurveDataEntry> madeAgain(borrower.GetCurveData()->FindInkIDEntry(1));
  EXPECT_NE(made, madeAgain);
}

TEST(CurveEntry, ImportTakesTheFirstCurveOfTheInkAndExtendInfo) {
  CLinearizationEntry target;
  CInkLimitEntry source;
  source.SetLabelString("new");
  target.SetLabelString("old");
  Add(target, MakeCurve(k16, 1, {1, 1}, 5));
  Add(target, MakeCurve(k8, 2, {3}));
  Add(source, MakeCurve(k8, 2, {30, 31}));
  Add(source, MakeCurve(k8, 1, {40}, 4));
  Add(source, MakeCurve(k8, 1, {255, 1}, 5));
  Add(source, MakeCurve(k8, 1, {9, 9}, 5));
  ASSERT_TRUE(target.DoImport(&source));
  EXPECT_THAT(SamplesOf(*target.GetCurveData()->FindInkIDEntry(1)), ElementsAre(65535, 257));
  EXPECT_THAT(SamplesOf(*target.GetCurveData()->FindInkIDEntry(2)), ElementsAre(30, 31));
  EXPECT_STREQ(target.GetLabelString(), "new");

  CLinearizationEntry wide;
  Add(wide, MakeCurve(k16, 2, {500}));
  CLinearizationEntry narrow;
  Add(narrow, MakeCurve(k8, 2, {3}));
  EXPECT_TRUE(narrow.DoImport(&wide));
  EXPECT_THAT(SamplesOf(*narrow.GetCurveData()->FindInkIDEntry(2)), ElementsAre(3));
}

TEST(CurveEntry, ImportStopsAtACurveWithoutPartner) {
  CInkLimitEntry target;
  target.SetLabelString("old");
  Add(target, MakeCurve(k8, 1, {1}));
  Add(target, MakeCurve(k8, 2, {2}));
  CInkLimitEntry source;
  source.SetLabelString("new");
  Add(source, MakeCurve(k8, 1, {10}));
  Add(source, MakeCurve(k8, 2, {20}, 3));
  EXPECT_FALSE(target.DoImport(&source));
  EXPECT_THAT(SamplesOf(*target.GetCurveData()->FindInkIDEntry(1)), ElementsAre(10));
  EXPECT_THAT(SamplesOf(*target.GetCurveData()->FindInkIDEntry(2)), ElementsAre(2));
  EXPECT_STREQ(target.GetLabelString(), "old");

  CSeparateLightEntry light;
  Add(light, MakeCurve(k8, 2, {2}));
  EXPECT_TRUE(light.DoImport(&source));
  EXPECT_THAT(SamplesOf(*light.GetCurveData()->FindInkIDEntry(2)), ElementsAre(20));

  CInkLimitEntry empty;
  empty.SetLabelString("empty");
  EXPECT_TRUE(target.DoImport(&empty));
  EXPECT_STREQ(target.GetLabelString(), "empty");
  EXPECT_TRUE(empty.DoImport(&source));
  EXPECT_STREQ(empty.GetLabelString(), "new");
  CProfileDataEntry other;
  EXPECT_FALSE(target.DoImport(&other));
  EXPECT_FALSE(target.DoImport(nullptr));
}

TEST(CurveEntry, OptionInfoHasViews) {
  CVariableEntry entry;
  entry.SetOptionInfo(1, 2, 3, 4);
  EXPECT_EQ(entry.GetOptionInfo(), 0x04030201u);
  EXPECT_THAT((std::vector<int>{entry.GetOptionInfoHH(), entry.GetOptionInfoHL(), entry.GetOptionInfoLH(),
                                entry.GetOptionInfoLL()}),
              ElementsAre(4, 3, 2, 1));
  CGrayBalanceEntry gray;
  gray.SetOptionInfo(std::uint16_t{0x1111}, std::uint16_t{0x2222});
  EXPECT_EQ(gray.GetOptionInfo(), 0x22221111u);
  EXPECT_EQ(gray.GetOptionInfoHW(), 0x2222);
  EXPECT_EQ(gray.GetOptionInfoLW(), 0x1111);
}

TEST(CurveEntry, CoordinatesStayInsideTheirArray) {
  struct SizedEntry : CGrayBalanceEntry {
    using CGrayBalanceEntry::Coordinates;
  };
  SizedEntry entry;
  EXPECT_TRUE(entry.IsArrayEnpty());
  entry.SetCoord(0, 1, 2);
  EXPECT_EQ(entry.GetCoordRow(0), 0);
  entry.Coordinates().resize(2);
  EXPECT_FALSE(entry.IsArrayEnpty());
  entry.SetCoord(1, 0x1234, 0x5678);
  entry.SetCoord(2, 9, 9);
  EXPECT_EQ(entry.Coordinates()[1], 0x12345678u);
  EXPECT_EQ(entry.GetCoordRow(1), 0x1234);
  EXPECT_EQ(entry.GetCoordCol(1), 0x5678);
  EXPECT_EQ(entry.GetCoordCol(2), 0);
}

}  // namespace
}  // namespace nvx::test
