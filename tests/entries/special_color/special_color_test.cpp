#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/special_color.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace nvx::test {
namespace {

using Table = std::unique_ptr<CSpecialColorInfoDataEntry>;

Table MakeTable(std::int32_t patterns, const Words& first, const Words& second) {
  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(first.size()), static_cast<std::uint32_t>(second.size())};
  Table table(CSpecialColorInfoDataEntry::CreateSpecialColorInfoDataEntry(1, sizes));
  FillTable(*table, patterns, first, second);
  return table;
}

CCurveDataEntry* NewCurve(std::uint32_t ink, const std::vector<std::uint32_t>& samples) {
  auto* const curve = new CCurveDataEntry16;
  curve->SetInkID(ink);
  for (const std::uint32_t sample : samples) curve->Add(sample);
  return curve;
}

// The set of 174 bytes: one curve of ink 9 with three samples.
CCurveData* NewCurveSet() {
  auto* const set = new CCurveData;
  set->SetUsedType(4);
  set->AddTail(NewCurve(9, {1, 2, 0x1234}));
  return set;
}

std::int32_t Seek(CSpecialColorInfoDataEntry& table, std::int32_t condition1, std::int32_t condition2, Words colors) {
  return table.SeekPatternIndexByCondition(condition1, condition2, static_cast<std::int32_t>(colors.size()),
                                           colors.data());
}

TEST(SpecialColor, ColoursAndConditionsPickTheFirstPattern) {
  const Table table = MakeTable(2, kColorPatterns, kColorAdvice);
  EXPECT_EQ(Seek(*table, 1250, 5, {7, 3}), 0) << "the order of the caller does not matter";
  EXPECT_EQ(Seek(*table, 1299, 5, {0, 7, 0, 3, 0}), 0) << "zeros go to the end, and those too many play no part";
  EXPECT_EQ(Seek(*table, 1300, 5, {3, 7}), -1);
  EXPECT_EQ(Seek(*table, 1250, 6, {3, 7}), 1);
  EXPECT_EQ(Seek(*table, 1251, 6, {3, 7}), -1) << "1250 stands for itself alone";
  EXPECT_EQ(Seek(*table, 1250, 5, {3}), 1) << "slot 7 of the first meets a 0";
  EXPECT_EQ(Seek(*table, 1250, 5, {2, 3}), -1);
  EXPECT_EQ(Seek(*table, 1250, 5, {3, 7, 8, 9}), -1) << "more colours than slots";
  EXPECT_EQ(Seek(*table, -1, 5, {3, 7}), -1);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1250, 5, -4, nullptr), -1);

  table->SetParameter(8, 0, 0);
  EXPECT_EQ(Seek(*table, 1299, 5, {8}), 0) << "no slots, nothing to compare";
  for (const std::int32_t slots : {kLeast, -1, 4, kGreatest}) {
    table->SetParameter(8, slots, 0);
    EXPECT_EQ(Seek(*table, 1250, 5, {3, 7}), -1) << slots;
  }
}

TEST(SpecialColor, PatternsRecommend) {
  const Table table = MakeTable(2, kColorPatterns, kColorAdvice);
  EXPECT_EQ(table->SeekPatternRecommendLevel(0), 1);
  EXPECT_EQ(table->SeekPatternRecommendDensity(1), 60);
  EXPECT_EQ(table->SeekPatternVDCurveIndex(0), 2);
  Words wide(20);
  wide[13] = 77;
  EXPECT_EQ(MakeTable(2, {}, wide)->SeekPatternRecommendDensity(1), 77);
}

TEST(SpecialColor, HostileCountsLeadNowhere) {
  for (const std::int32_t patterns : {kLeast, -1, 0, 3, 16, 17, 20, 21, kGreatest}) {
    const Table table = MakeTable(patterns, kColorPatterns, kColorAdvice);
    EXPECT_EQ(Seek(*table, 1250, 5, {3, 7}), -1) << patterns;
    for (const std::int32_t pattern : {kLeast, -1, 0, 2, 19, kGreatest}) {
      table->SeekPatternRecommendLevel(pattern);
      table->SeekPatternRecommendDensity(pattern);
      table->SeekPatternVDCurveIndex(pattern);
    }
    EXPECT_EQ(table->SeekPatternRecommendLevel(-1), 0);
    EXPECT_EQ(table->SeekPatternRecommendLevel(kGreatest), 0);
  }
  EXPECT_EQ(Seek(*MakeTable(1, {12, 0, 0}, {}), 0, 0, {}), -1);
}

TEST(SpecialColor, ReadsAndWritesSeveralTablesWithTheirCurves) {
  CSpecialColorInfoEntry entry;
  ASSERT_TRUE(Parse(entry, SpecialColorForm()));
  CSpecialColorInfoData& data = *entry.GetSpecialColorInfoData();
  EXPECT_EQ(data.GetProfileColorType(), 1u);
  ASSERT_EQ(data.GetPropertyCount(), 2);
  CSpecialColorInfoDataEntry& first = *data.Find(1);
  EXPECT_EQ(ArrayOf(first, 0), kColorPatterns);
  EXPECT_EQ(ArrayOf(first, 1), kColorAdvice);
  ASSERT_EQ(first.GetCountVD(), 2);
  EXPECT_EQ(first.CurvesVD().At(0)->GetUsedType(), 4u);
  EXPECT_EQ(static_cast<std::uint16_t*>(first.CurvesVD().At(0)->FindInkIDEntry(9)->GetRefBuffer())[2], 0x1234);
  EXPECT_EQ(first.CurvesVD().At(1)->GetCount(), 0);
  EXPECT_EQ(ArrayOf(*data.Entries().At(1), 0), (Words{16, 7, 0, 99}));
  EXPECT_EQ(ArrayOf(*data.Entries().At(1), 1), Words{8});
  EXPECT_EQ(data.Entries().At(1)->GetCountVD(), 0);

  CSpecialColorInfoEntry copy;
  ASSERT_TRUE(copy.DoImport(&entry));
  EXPECT_EQ(BytesOf(copy), ToCapacity(SpecialColorForm()));
  EXPECT_EQ(copy.GetSpecialColorInfoData()->Find(1)->GetCountVD(), 2);
  CProfileDataEntry other;
  EXPECT_FALSE(copy.DoImport(&other));

  first.SetUsedType(1, nullptr);
  EXPECT_EQ(first.GetCountVD(), 0);
  EXPECT_EQ(first.GetRefBuffer(0), nullptr);
}

TEST(SpecialColor, TheProfileColourTypeComesFromAnyHeader) {
  CSpecialColorInfoEntry entry;
  EXPECT_FALSE(entry.BufferToData());
  ASSERT_TRUE(Parse(entry, SpecialColorHeader(5, 0)));
  EXPECT_EQ(entry.GetSpecialColorInfoData()->GetProfileColorType(), 5u);
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), ToCapacity(SpecialColorHeader(5, 0)));

  Bytes wrong = SpecialColorHeader(6, 0);
  wrong[0] = 'X';
  CNvxMemFile file(wrong.data(), static_cast<std::uint32_t>(wrong.size()));
  EXPECT_EQ(CSpecialColorInfoFile::CreateSpecialColorInfoFile(file), nullptr);
  EXPECT_FALSE(CSpecialColorInfoFile().LoadFile(file, entry.GetSpecialColorInfoData()));
  EXPECT_EQ(entry.GetSpecialColorInfoData()->GetProfileColorType(), 6u);
}

TEST(SpecialColor, OtherUsedTypesMakeNoTableAndHaveNoBlock) {
  ByteBuilder bytes = SpecialColorHeader(0, 2);
  bytes.Append(SpecialColorRecord(2, kColorDataSize, 2)).Append(SpecialColorRecord(1, 4 + 16 + 4 + 4, 0));
  bytes.Append(SpecialColorArrays({16, 7, 0, 99}, {8}));
  CSpecialColorInfoEntry entry;
  EXPECT_TRUE(Parse(entry, bytes));
  EXPECT_EQ(entry.GetPayloadState(), PayloadState::kPart) << "the other record is in the buffer alone";
  CSpecialColorInfoData& data = *entry.GetSpecialColorInfoData();
  ASSERT_EQ(data.GetPropertyCount(), 1);
  EXPECT_EQ(ArrayOf(*data.Find(1), 1), Words{8});
  EXPECT_FALSE(entry.DataToBuffer());
}

TEST(SpecialColor, RefusesToSaveWhatCannotBeReadBack) {
  const auto isSaved = [](const Words& first, std::vector<CCurveData*> sets, std::uint32_t usedType = 1) {
    CSpecialColorInfoEntry entry;
    Table table = MakeTable(0, first, {});
    const std::uint32_t sizes[] = {static_cast<std::uint32_t>(first.size()), 0};
    table->SetUsedType(usedType, sizes);
    for (CCurveData* const set : sets) table->AddTailVD(set);
    entry.GetSpecialColorInfoData()->AddTail(table.release());
    const bool saved = entry.DataToBuffer();
    EXPECT_TRUE(!saved || entry.BufferToData());
    EXPECT_TRUE(saved || entry.GetSize() == 0);
    return saved;
  };
  EXPECT_TRUE(isSaved({16, 0, 2, 348}, {NewCurveSet(), NewCurveSet()}));
  EXPECT_FALSE(isSaved({16, 0, 1, 348}, {NewCurveSet(), NewCurveSet()}));
  EXPECT_FALSE(isSaved({16, 0, 2, 347}, {NewCurveSet(), NewCurveSet()}));
  EXPECT_FALSE(isSaved({16, 0, 1, 0}, {}));
  EXPECT_FALSE(isSaved({8, 0}, {NewCurveSet()}));
  EXPECT_TRUE(isSaved({16, 0, -1, 55}, {}));
  EXPECT_TRUE(isSaved({4}, {}));
  EXPECT_FALSE(isSaved({}, {}));
  EXPECT_FALSE(isSaved({12, 0, 0, 0}, {}));
  EXPECT_FALSE(isSaved({16, 0, 0, 0}, {}, 2));

  CCurveData* const uneven = NewCurveSet();
  uneven->AddTail(NewCurve(1, {1, 2}));
  EXPECT_FALSE(isSaved({16, 0, 1, 314}, {uneven}));
  for (const std::uint32_t type : {0u, 2u, 3u}) {
    auto* const curve = new CCurveDataEntry8;
    curve->Add(1);
    curve->SetDataType(type);
    auto* const set = new CCurveData;
    set->AddTail(curve);
    EXPECT_EQ(isSaved({16, 0, 1, 169}, {set}), type == 2) << type;
  }
}

TEST(SpecialColor, SaysWhereASetOfCurvesIsBroken) {
  constexpr std::size_t kSecondSet = 200 + 32 + 132 + 4 + 6;
  CSpecialColorInfoEntry entry;
  nvx::Diagnosis diagnosis;
  entry.SetDiagnosis(&diagnosis);
  EXPECT_FALSE(Parse(entry, With(SpecialColorForm(), kSecondSet + 8, 0)));
  ASSERT_EQ(diagnosis.Findings().size(), 1u);
  EXPECT_EQ(diagnosis.Findings()[0].rule, "curve set header: wrong version");
  EXPECT_EQ(diagnosis.Findings()[0].offset, kSecondSet + 8);
}

TEST(SpecialColor, AWrongArrayMagicSparesTheOtherTable) {
  CSpecialColorInfoEntry entry;
  EXPECT_FALSE(Parse(entry, With(SpecialColorForm(), 72 + 84, 0)));
  CSpecialColorInfoData& data = *entry.GetSpecialColorInfoData();
  ASSERT_EQ(data.GetPropertyCount(), 2);
  EXPECT_EQ(ArrayOf(*data.Find(1), 0), kColorPatterns);
  EXPECT_EQ(ArrayOf(*data.Entries().At(1), 1), Words{8});
}

}  // namespace
}  // namespace nvx::test
