#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/large_parameter.h>

#include <gtest/gtest.h>

#include <memory>

namespace nvx::test {
namespace {

using Table = std::unique_ptr<CLargeParameterDataEntry>;

Table FixedTable() { return Table(CLargeParameterDataEntry::CreateLargeParameterDataEntry(1, nullptr)); }

Table PatternTable(std::int32_t patterns, const Words& first, const Words& second) {
  const std::uint32_t sizes[] = {static_cast<std::uint32_t>(first.size()), static_cast<std::uint32_t>(second.size())};
  Table table(CLargeParameterDataEntry::CreateLargeParameterDataEntry(2, sizes));
  FillTable(*table, patterns, first, second);
  return table;
}

TEST(LargeParameter, FixedTableHasItsShapeAndDefaults) {
  const Table table = FixedTable();
  Words expected(264);
  expected[3] = expected[4] = expected[134] = expected[135] = -1;
  expected[133] = 1;
  EXPECT_EQ(ArrayOf(*table, 0), expected);
  EXPECT_EQ(*table->GetParameterMax(), 264);
  EXPECT_EQ(table->GetParamsCount(), 1);
  EXPECT_FALSE(table->SetParameter(264, 1, 0));
  EXPECT_FALSE(table->SetParameter(-1, 1, 0));
  EXPECT_FALSE(table->SetParameter(5, 1, 1));
  EXPECT_TRUE(table->SetParameter(263, 1, 0));
  EXPECT_TRUE(table->SetParameter(5, 55, 0));
  EXPECT_EQ(table->GetParameter(5, 1), 55);
  EXPECT_EQ(table->GetParameter(264, 0), 0);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 2, 3, 4), 0);
  EXPECT_EQ(table->GetRefBufferByPatternIndex(0), nullptr);
  EXPECT_EQ(table->GetRefBuffer(1), nullptr);
  EXPECT_EQ(CLargeParameterDataEntry::CreateLargeParameterDataEntry(3, nullptr), nullptr);
}

TEST(LargeParameter, ConditionsPickTheFirstPatternThatPasses) {
  const Table table = PatternTable(2, kParameterPatterns, kParameterStore);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 2, 3, 150), 0);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 9, 3, 1250), 1);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 9, 3, 1251), -1);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 2, 3, 1250), 1);
  EXPECT_EQ(table->SeekPatternIndexByCondition(-1, 2, 3, 100), -1) << "-1 in a query is an ordinary value";
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 9, 3, 1200), -1) << "a hundred in a query is an ordinary value";

  const auto passes = [&](std::int32_t stored, std::int32_t wanted) {
    table->SetParameter(2 + 5, stored, 0);
    return table->SeekPatternIndexByCondition(1, 2, 3, wanted) == 0;
  };
  EXPECT_TRUE(passes(0, -99));
  EXPECT_TRUE(passes(0, 99));
  EXPECT_FALSE(passes(0, 100));
  EXPECT_TRUE(passes(-100, -199));
  EXPECT_FALSE(passes(-100, -99));
  EXPECT_TRUE(passes(1200, 1299));
  EXPECT_FALSE(passes(1200, 1300));
  EXPECT_TRUE(passes(-1, kLeast));
  table->SetPatternCount(0);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 2, 3, 150), -1);
}

TEST(LargeParameter, PatternsSayWhereTheirParametersAre) {
  const Table table = PatternTable(2, kParameterPatterns, kParameterStore);
  EXPECT_EQ(table->SeekPatternParamCount(0), 10);
  EXPECT_EQ(table->SeekPatternParamCount(1), 3);
  EXPECT_EQ(table->SeekPatternSplitCount(1), 1);
  EXPECT_EQ(table->SeekPatternSplitParamCount(0, 1), 12);
  EXPECT_EQ(table->SeekPatternSplitParamCount(1, 0), 21);
  std::int32_t* const store = table->GetRefBuffer(1);
  EXPECT_EQ(table->GetRefBufferByPatternIndex(0), store);
  EXPECT_EQ(table->GetRefBufferByPatternIndex(1), store + 10);
  EXPECT_EQ(table->GetRefBufferByPatternIndex(2), store + 13);
}

// Every question stays inside the arrays: a sanitizer build sees it if one does not.
TEST(LargeParameter, HostileWordsLeadNowhere) {
  for (const std::int32_t patterns : {kLeast, -1, 0, 1, 2, 3, 30, 31, kGreatest}) {
    const Table table = PatternTable(patterns, kParameterPatterns, kParameterStore);
    for (const std::int32_t pattern : {kLeast, -1, 0, 1, 2, 29, kGreatest}) {
      for (const std::int32_t split : {kLeast, -1, 0, 17, kGreatest}) table->SeekPatternSplitParamCount(pattern, split);
      EXPECT_GE(table->SeekPatternParamCount(pattern), 0);
      table->SeekPatternSplitCount(pattern);
      table->GetRefBufferByPatternIndex(pattern);
    }
    EXPECT_EQ(table->SeekPatternIndexByCondition(9, 9, 9, 9), -1);
    EXPECT_EQ(table->SeekPatternSplitParamCount(0, -1), 0);
    EXPECT_EQ(table->SeekPatternSplitCount(-1), 0);
  }
  for (const std::int32_t count : {kLeast, -3, 12, kGreatest - 1, kGreatest}) {
    const Table table = PatternTable(2, kParameterPatterns, kParameterStore);
    table->SetParameter(2 + 10, count, 0);
    EXPECT_EQ(table->SeekPatternParamCount(0), count == 12 ? 14 : 0);
    EXPECT_EQ(table->GetRefBufferByPatternIndex(1), count == 12 ? nullptr : table->GetRefBuffer(1));
  }
  const Table shortTable = PatternTable(1, {28, 0, 0, 0, 1, 2, 3}, {});
  EXPECT_EQ(shortTable->SeekPatternIndexByCondition(1, 2, 3, 0), -1);
  EXPECT_EQ(shortTable->SeekPatternParamCount(0), 0);
}

TEST(LargeParameter, ReadsTablesOfBothGenerationsInAnyOrder) {
  CLargeParameterEntry entry;
  ASSERT_TRUE(Parse(entry, LargeParameterForm()));
  CLargeParameterData& data = *entry.GetLargeParameterData();
  ASSERT_EQ(data.GetPropertyCount(), 3);
  for (const std::uint32_t i : {0u, 2u}) {
    CLargeParameterDataEntry& table = *data.Entries().At(i);
    EXPECT_EQ(table.GetUsedType(), 2u);
    EXPECT_EQ(ArrayOf(table, 0), kParameterPatterns);
    EXPECT_EQ(ArrayOf(table, 1), kParameterStore);
    EXPECT_EQ(table.GetPatternCount(), 2);
  }
  EXPECT_EQ(data.Entries().At(1)->GetUsedType(), 1u);
  EXPECT_EQ(ArrayOf(*data.Entries().At(1), 0), ArrayOf(*FixedTable(), 0));

  CLargeParameterEntry copy;
  EXPECT_TRUE(copy.DoImport(&entry));
  EXPECT_EQ(copy.GetLargeParameterData()->GetPropertyCount(), 3);
  EXPECT_EQ(BytesOf(copy), ToCapacity(LargeParameterForm()));
  EXPECT_TRUE(entry.DoImport(&entry));
  EXPECT_EQ(BytesOf(entry), ToCapacity(LargeParameterForm()));
  CProfileDataEntry other;
  EXPECT_FALSE(copy.DoImport(&other));
}

TEST(LargeParameter, EmptyListIsTheHeaderAlone) {
  const ByteBuilder empty = ByteBuilder().Text("MRAP").U32(16, 0, 0);
  CLargeParameterEntry entry;
  ASSERT_TRUE(Parse(entry, empty));
  EXPECT_TRUE(Parse(entry, With(empty, 8, 0xFFFFFFFF)));
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), ToCapacity(empty));
}

TEST(LargeParameter, ForgivesTheMagicAndSizeOfARecordAndTheSizesOfAFixedTable) {
  CLargeParameterEntry entry;
  for (const auto& [offset, word] : {std::pair(16u, 0u), {16 + 4, 99}, {36 + 12, 8}, {36 + 16, 8}}) {
    EXPECT_TRUE(Parse(entry, With(LargeParameterForm(), offset, word))) << offset;
  }
}

TEST(LargeParameter, ReshapedTableKeepsItsWordsAndLoadsAsTheLaterKind) {
  CLargeParameterEntry entry;
  CLargeParameterDataEntry* const table = FixedTable().release();
  entry.GetLargeParameterData()->AddTail(table);
  const std::uint32_t sizes[] = {30, 13};
  table->SetUsedTypeID001toID002(sizes);
  EXPECT_EQ(table->GetParamsCount(), 2);
  EXPECT_EQ(table->GetParameterMax()[1], 13);
  EXPECT_EQ(table->GetParameter(3, 1), -1) << "words stay, and the answers are still those of array 0";
  EXPECT_FALSE(entry.DataToBuffer()) << "word 0 is not the byte length yet";
  for (std::int32_t i = 0; i < 30; ++i) table->SetParameter(i, kParameterPatterns[static_cast<std::size_t>(i)], 0);
  for (std::int32_t i = 0; i < 13; ++i) table->SetParameter(i, kParameterStore[static_cast<std::size_t>(i)], 1);
  table->SetPatternCount(2);
  EXPECT_EQ(table->SeekPatternIndexByCondition(1, 9, 3, 1250), 0);
  ASSERT_TRUE(entry.DataToBuffer());
  ASSERT_TRUE(entry.BufferToData());
  EXPECT_EQ(entry.GetLargeParameterData()->Find(2)->SeekPatternIndexByCondition(1, 9, 3, 1250), 1);
}

TEST(LargeParameter, RefusesToSaveWhatCannotBeReadBack) {
  const auto isSaved = [](Table table) {
    CLargeParameterEntry entry;
    EXPECT_TRUE(entry.DataToBuffer());
    const Bytes empty = BytesOf(entry);
    entry.GetLargeParameterData()->AddTail(table.release());
    const bool saved = entry.DataToBuffer();
    EXPECT_TRUE(saved || BytesOf(entry) == empty) << "a refusal leaves the buffer";
    return saved;
  };
  Words wrongLength = kParameterPatterns;
  wrongLength[0] = 116;
  EXPECT_TRUE(isSaved(PatternTable(2, kParameterPatterns, kParameterStore)));
  EXPECT_TRUE(isSaved(PatternTable(-5, {4}, {})));
  EXPECT_FALSE(isSaved(PatternTable(2, wrongLength, kParameterStore)));
  EXPECT_FALSE(isSaved(PatternTable(0, {}, kParameterStore)));
  EXPECT_FALSE(isSaved(std::make_unique<CLargeParameterID001Entry>()));
  Table strange = FixedTable();
  strange->SetUsedType(3, nullptr);
  EXPECT_FALSE(isSaved(std::move(strange)));
}

TEST(LargeParameter, ABrokenBlockSparesTheOtherTables) {
  Bytes bytes = LargeParameterForm();
  bytes[16 + 3 * 20] = 'X';
  CLargeParameterEntry entry;
  EXPECT_FALSE(Parse(entry, bytes));
  CLargeParameterData& data = *entry.GetLargeParameterData();
  ASSERT_EQ(data.GetPropertyCount(), 3);
  EXPECT_EQ(ArrayOf(*data.Find(2), 0), Words(30));
  EXPECT_EQ(ArrayOf(*data.Entries().At(2), 1), kParameterStore);
  EXPECT_FALSE(Parse(entry, Bytes(20, 'M')));
  EXPECT_EQ(data.GetPropertyCount(), 0) << "a form that is none still empties the list";

  Diagnosis diagnosis;
  entry.SetDiagnosis(&diagnosis);
  EXPECT_FALSE(Parse(entry, First(LargeParameterForm(), 16 + 3 * 20 + 4 + 3)));
  EXPECT_EQ(diagnosis.Findings().at(0).rule, "array 0: no length, the block is cut short");
}

}  // namespace
}  // namespace nvx::test
