#include "support/curve_builder.h"

#include <nvxprofile/curve.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using nvx::test::MakeCurve;
using nvx::test::SamplesOf;
using testing::ElementsAre;

// Reaches the protected conversions.
struct OpenCurve8 : CCurveDataEntry8 {
  using CCurveDataEntry8::CopyData16BitTo16BitCurve;
  using CCurveDataEntry8::CopyDataTo16BitCurve;
};

std::vector<std::uint32_t> InksOf(CCurveData& set) {
  std::vector<std::uint32_t> inks;
  bool more = set.GetHeadPosition();
  while (more) inks.push_back(set.GetNext(more)->GetInkID());
  return inks;
}

void AddInks(CCurveData& set, std::initializer_list<std::uint32_t> inks) {
  for (const std::uint32_t ink : inks) set.AddTail(MakeCurve(CCurveDataEntry::kSamples8, ink, {ink}).release());
}

TEST(Curve, KeepsTheLowBitsOfSamplesAndBoundsTheIndex) {
  CCurveDataEntry8 narrow;
  CCurveDataEntry16 wide;
  EXPECT_EQ(narrow.Add(0x1234), 1u);
  EXPECT_EQ(wide.Add(0x12345), 1u);
  EXPECT_EQ(wide.Add(7), 2u);
  EXPECT_TRUE(wide.SetAt(1, 0x7FFFF));
  EXPECT_THAT(SamplesOf(narrow), ElementsAre(0x34));
  EXPECT_THAT(SamplesOf(wide), ElementsAre(0x2345, 0xFFFF));
  EXPECT_EQ(wide.GetSize(), 4u);
  std::uint32_t value = 77;
  EXPECT_FALSE(narrow.GetAt(1, value));
  EXPECT_FALSE(narrow.SetAt(1, 0));
  EXPECT_FALSE(wide.GetAt(std::numeric_limits<std::uint32_t>::max(), value));
  EXPECT_EQ(value, 77u);
}

TEST(Curve, WithoutAWidthThereAreNoSamples) {
  struct Plain : CCurveDataEntry {
    float GetMaxBitValue() override { return 1.0f; }
  } plain;
  std::uint32_t value = 77;
  EXPECT_EQ(plain.Add(5), 0u);
  EXPECT_EQ(plain.GetCount() + plain.GetSize(), 0u);
  EXPECT_FALSE(plain.GetAt(0, value) || plain.SetAt(0, 5));
  EXPECT_EQ(plain.GetBuffer(4), nullptr);
}

TEST(Curve, GetBufferCountsInBytesAndClears) {
  CCurveDataEntry8 narrow;
  CCurveDataEntry16 wide;
  narrow.Add(1);
  wide.Add(1);
  narrow.GetBuffer(7);
  wide.GetBuffer(7);
  EXPECT_THAT(SamplesOf(narrow), testing::Each(0u));
  EXPECT_EQ(narrow.GetCount(), 7u);
  EXPECT_THAT(SamplesOf(wide), ElementsAre(0, 0, 0));
  wide.DeleteAllElement();
  EXPECT_EQ(wide.GetSize(), 0u);
}

TEST(Curve, MaxValueChkCutsAndTruncates) {
  CCurveDataEntry8 narrow;
  CCurveDataEntry16 wide;
  EXPECT_EQ(narrow.MaxValueChk(300.7f), 255u);
  EXPECT_EQ(narrow.MaxValueChk(12.9f), 12u);
  for (const auto& [value, cut] : {std::pair(300.7f, 300u), {1e30f, 65535u}, {-1.0f, 0u}, {std::nanf(""), 0u}}) {
    EXPECT_EQ(wide.MaxValueChk(value), cut) << value;
  }
}

TEST(Curve, AttributesAreCutWhereTheyAreShownAndWholeWhereTheyAreCopied) {
  CCurveDataEntry8 curve;
  EXPECT_STREQ(curve.GetInkName(), "");
  curve.SetInkID(0x123);
  EXPECT_EQ(curve.GetInkID(), 0x23u);
  curve.SetInkName(std::string(400, 'x').c_str());
  EXPECT_EQ(std::string(curve.GetInkName()), std::string(255, 'x'));
  curve.SetInkName(curve.GetInkName() + 250);
  EXPECT_STREQ(curve.GetInkName(), "xxxxx");
  curve.SetInkName("K");
  EXPECT_STREQ(curve.GetInkName(), "K");
  curve.SetInkName(nullptr);
  EXPECT_STREQ(curve.GetInkName(), "");
  EXPECT_EQ(CCurveDataEntry::CreateCurveDataEntry(static_cast<CCurveDataEntry::typeData>(3)), nullptr);
}

TEST(Curve, WidensBy257OrTakesRawBytesAsTheyAre) {
  const auto source = MakeCurve(CCurveDataEntry::kSamples8, 1, {0, 1, 255});
  source->SetMax(255);
  CCurveDataEntry16 target;
  target.SetMin(4);
  source->CopyData(&target);
  EXPECT_THAT(SamplesOf(target), ElementsAre(0, 257, 65535));
  EXPECT_EQ(target.GetMax(), 65535u);
  EXPECT_EQ(target.GetMin(), 0u);

  const auto raw = MakeCurve(CCurveDataEntry::kSamples8, 1, {0x34, 0x12});
  raw->SetDataType(CCurveDataEntry::kSamples16);
  raw->SetMax(0x1234);
  raw->CopyData(&target);
  EXPECT_THAT(SamplesOf(target), ElementsAre(0x1234));
  EXPECT_EQ(target.GetMax(), 0x1234u);
}

TEST(Curve, AnOddRawByteStopsTheConversion) {
  OpenCurve8 raw;
  for (const std::uint32_t byte : {0x34u, 0x12u, 0x56u}) raw.Add(byte);
  raw.SetDataType(CCurveDataEntry::kSamples16);
  raw.SetMax(5);
  CCurveDataEntry16 target;
  EXPECT_FALSE(raw.CopyData16BitTo16BitCurve(&target)) << "half a sample is left";
  EXPECT_THAT(SamplesOf(target), ElementsAre(0x1234));
  EXPECT_EQ(target.GetMax(), 0u);
  EXPECT_TRUE(raw.CopyDataTo16BitCurve(&target));
  EXPECT_THAT(SamplesOf(target), ElementsAre(0x3434, 0x1212, 0x5656));
  CCurveDataEntry8 narrow;
  EXPECT_FALSE(raw.CopyData16BitTo16BitCurve(&narrow));
  EXPECT_FALSE(raw.CopyDataTo16BitCurve(&narrow));
  EXPECT_FALSE(raw.CopyDataTo16BitCurve(nullptr));
  EXPECT_EQ(narrow.GetCount(), 0u);
}

TEST(Curve, CopyNeverNarrowsAndLeavesTheTypeOfTheTarget) {
  const auto wide = MakeCurve(CCurveDataEntry::kSamples16, 0x123, {1, 2}, 9);
  wide->SetMax(50);
  wide->SetMin(40);
  wide->SetInkName("Red");
  CCurveDataEntry16 limits;
  wide->CopyData(&limits);
  EXPECT_THAT((std::vector{limits.GetMax(), limits.GetMin(), limits.GetCount()}), ElementsAre(50, 40, 2));
  const auto narrow = MakeCurve(CCurveDataEntry::kSamples8, 1, {7, 8});
  wide->CopyData(narrow.get());
  EXPECT_THAT(SamplesOf(*narrow), ElementsAre(7, 8));
  wide->Copy(*narrow);
  EXPECT_EQ(narrow->GetCount(), 0u);
  EXPECT_STREQ(narrow->GetInkName(), "Red");
  EXPECT_THAT((std::vector{narrow->GetMax(), narrow->GetMin(), narrow->GetExtendInfo(), narrow->GetDataType()}),
              ElementsAre(50, 40, 9, 1));
  wide->Copy(*wide);
  EXPECT_THAT(SamplesOf(*wide), ElementsAre(1, 2));
}

TEST(CurveSet, WalksAndFinds) {
  CCurveData set;
  EXPECT_FALSE(set.GetHeadPosition());
  EXPECT_EQ(set.GetCurveDataSizeType(), 0u);
  set.AddTail(nullptr);
  set.AddTail(MakeCurve(CCurveDataEntry::kSamples8, 1, {}, 0).release());
  set.AddTail(MakeCurve(CCurveDataEntry::kSamples16, 44, {}, 5).release());
  set.AddTail(MakeCurve(CCurveDataEntry::kSamples16, 44, {}, 6).release());
  EXPECT_EQ(set.GetCount(), 3);
  EXPECT_EQ(set.GetCurveDataSizeType(), 2u);
  EXPECT_THAT(InksOf(set), ElementsAre(1, 44, 44));
  EXPECT_EQ(set.FindInkIDEntry(44)->GetExtendInfo(), 5u);
  EXPECT_EQ(set.FindInkIDEntryonSize(44, 6)->GetExtendInfo(), 6u);
  EXPECT_EQ(set.FindInkIDEntryonSize(44, 7), nullptr);
  EXPECT_EQ(set.FindInkIDEntry(300), nullptr);  // 300 is 44 in its low 8 bits
  set.FindInkIDEntry(1)->SetSlotNo(8);
  EXPECT_EQ(set.FindSlotNoEntry(8)->GetInkID(), 1u);
}

TEST(CurveSet, CopiesDeeplyAndSkips) {
  CCurveData set;
  set.SetUsedType(6);
  AddInks(set, {1, 3, 5});
  CCurveDataEntry* const raw = MakeCurve(CCurveDataEntry::kSamples8, 0x107, {0x34, 0x12}).release();
  raw->SetDataType(CCurveDataEntry::kSamples16);
  set.AddTail(raw);
  CCurveData target;
  AddInks(target, {9});
  const std::uint32_t skipped[] = {3, 0x100, 0x101};
  set.Copy(target, skipped, 3);
  EXPECT_THAT(InksOf(target), ElementsAre(1, 5, 7));
  EXPECT_EQ(target.GetUsedType(), 6u);
  EXPECT_EQ(target.GetCurveDataSizeType(), 2u);
  ASSERT_NE(dynamic_cast<CCurveDataEntry16*>(target.FindInkIDEntry(7)), nullptr);
  EXPECT_THAT(SamplesOf(*target.FindInkIDEntry(7)), ElementsAre(0x1234));
  target.FindInkIDEntry(1)->SetAt(0, 200);
  EXPECT_THAT(SamplesOf(*set.FindInkIDEntry(1)), ElementsAre(1));
  set.Copy(target, skipped, 0);
  EXPECT_THAT(InksOf(target), ElementsAre(1, 3, 5, 7));
  set.Copy(set);
  EXPECT_EQ(set.GetCount(), 4);
  raw->SetDataType(3);
  set.Copy(target);
  EXPECT_THAT(InksOf(target), ElementsAre(1, 3, 5)) << "no curve is of that type";
}

TEST(CurveSet, LetsBorrowedCurvesGoAlive) {
  const auto curve = MakeCurve(CCurveDataEntry::kSamples8, 1, {42});
  {
    CCurveData set;
    set.SetAutoDelete(false);
    set.AddTail(curve.get());
    set.DeleteContents();
    EXPECT_EQ(set.GetCount(), 0);
    set.AddTail(curve.get());
  }
  EXPECT_THAT(SamplesOf(*curve), ElementsAre(42));
}

}  // namespace
