#include "support/entry_forms.h"
#include "support/forms_in_memory.h"

#include <nvxprofile/mask.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace nvx::test {
namespace {

CMaskParameterDataEntry* NewRecord(std::uint32_t pass, std::vector<std::uint32_t> colors, const Bytes& data = {}) {
  CMaskParameterDataEntry* const entry = CMaskParameterDataEntry::CreateEntry();
  entry->SetPass(pass);
  entry->SetSpecialColorsetCode(2);
  entry->SetPrintMethod(300);
  for (const std::uint32_t color : colors) entry->AddLayerColor(color);
  entry->SetParamDataBuffer(data.data(), static_cast<std::uint32_t>(data.size()));
  return entry;
}

CMaskPatternDataEntry* NewPattern(std::uint32_t id, const Bytes& data = {}) {
  CMaskPatternDataEntry* const entry = CMaskPatternDataEntry::CreateEntry();
  entry->SetMaskPatternID(id);
  entry->SetMaskPatternBuffer(data.data(), static_cast<std::uint32_t>(data.size()));
  return entry;
}

Bytes ParamBytes(CMaskParameterDataEntry& entry) {
  const std::uint8_t* const data = entry.GetParamDataBuffer();
  return Bytes(data, data + entry.GetParamDataSize());
}

Bytes PatternBytes(CMaskPatternDataEntry& entry) {
  const std::uint8_t* const data = entry.GetMaskPatternBuffer();
  return Bytes(data, data + entry.GetMaskPatternSize());
}

// Header and records of a pattern table, from IDs and sizes.
ByteBuilder PatternRecords(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& records) {
  ByteBuilder bytes = MaskTableHeader("HTPM", static_cast<std::uint32_t>(records.size()));
  for (const auto& [id, size] : records) bytes.Text("HRPM").U32(40, 0, id, size).Zero(20);
  return bytes;
}

TEST(MaskParameter, KeepsColoursSortedAndIdsInOrder) {
  CMaskParameterDataEntry entry;
  for (const std::uint32_t color : {5u, 2u, 9u, 0xFFFFFFFFu, 2u}) entry.AddLayerColor(color);
  for (const std::uint32_t id : {5u, 2u, 5u}) entry.AddUsePatternID(id);
  ASSERT_EQ(entry.GetLayerColorCount(), 5u);
  ASSERT_EQ(entry.GetUsePatternIDCount(), 3u);
  const std::uint32_t sorted[] = {2, 2, 5, 9, 0xFFFFFFFF, 0};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(entry.GetLeyerColor(i), sorted[i]);
  const std::uint32_t inOrder[] = {0, 5, 2, 5};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(entry.GetUsePatternID(i - 1), inOrder[i]);
}

TEST(MaskParameter, BlockIsCopiedEvenFromItself) {
  CMaskParameterDataEntry entry;
  EXPECT_EQ(entry.GetParamDataBuffer(), nullptr);
  Bytes data = {1, 2, 3, 4};
  entry.SetParamDataBuffer(data.data(), 4);
  data.assign(4, 0);
  entry.SetParamDataBuffer(entry.GetParamDataBuffer() + 1, 3);
  EXPECT_EQ(ParamBytes(entry), (Bytes{2, 3, 4}));
  entry.SetParamDataBuffer(nullptr, 7);
  EXPECT_EQ(entry.GetParamDataSize(), 0u);
  EXPECT_EQ(entry.GetParamDataBuffer(), nullptr);
}

TEST(MaskParameter, FirstRecordThatFitsWins) {
  CMaskParameterData list;
  EXPECT_EQ(list.GetEntry(4, 2, 300, 0, nullptr), nullptr);
  CMaskParameterDataEntry* const first = NewRecord(4, {1, 2});
  CMaskParameterDataEntry* const bare = NewRecord(4, {});
  list.AddTail(NewRecord(3, {1, 2}));
  list.AddTail(first);
  list.AddTail(NewRecord(4, {3, 4}));
  list.AddTail(bare);
  list.AddTail(nullptr);
  std::uint32_t colors[] = {4, 3};
  EXPECT_EQ(list.GetEntry(4, 2, 300, 2, colors), first);
  EXPECT_EQ(list.GetEntry(4, 2, 300, 0, nullptr), bare);
  EXPECT_EQ(list.GetEntry(4, 1, 300, 2, colors), nullptr);
  EXPECT_EQ(list.GetEntry(4, 2, 301, 2, colors), nullptr);
  EXPECT_EQ(list.GetEntry(4, 2, 300, 3, colors), nullptr);
  EXPECT_EQ(list.GetEntryCount(), 4);
}

TEST(MaskParameter, FormIsExact) {
  CMaskParameterData list;
  EXPECT_EQ(SaveBytes<CMaskParameterFile>(list), MaskTableHeader("HPPM", 0).Take());
  list.AddTail(NewRecord(4, {9, 2, 5}, ByteBuilder().Text("block")));
  list.Entries().At(0)->AddUsePatternID(5);
  list.Entries().At(0)->AddUsePatternID(2);
  list.AddTail(NewRecord(8, {}));
  EXPECT_EQ(SaveBytes<CMaskParameterFile>(list), MaskParameterForm().Take());

  ASSERT_TRUE(LoadBytes<CMaskParameterFile>(MaskParameterForm(), list));
  ASSERT_EQ(list.GetEntryCount(), 4);
  EXPECT_EQ(ParamBytes(*list.Entries().At(2)), ByteBuilder().Text("block").Take());
}

TEST(MaskParameter, RefusedStreamsLeaveTheListAlone) {
  const Bytes whole = MaskParameterForm();
  for (const auto& [offset, word] : {std::pair(0u, 0u), {16, 3}, {40 + 24, 11}, {40 + 68, 10}}) {
    CMaskParameterData list;
    list.AddTail(NewRecord(1, {}));
    EXPECT_FALSE(LoadBytes<CMaskParameterFile>(With(whole, offset, word), list)) << offset;
    EXPECT_EQ(list.GetEntryCount(), 1);
  }
}

TEST(MaskParameter, WrongMagicsArePassedOver) {
  CMaskParameterData list;
  Diagnosis diagnosis;
  ASSERT_TRUE(LoadBytes<CMaskParameterFile>(With(MaskParameterForm(), 40 + 136, 0), list, &diagnosis)) << "record";
  EXPECT_EQ(diagnosis.Findings().size(), 1u);
  ASSERT_EQ(list.GetEntryCount(), 1);
  EXPECT_EQ(ParamBytes(*list.Entries().At(0)), ByteBuilder().Text("block").Take());

  // The first block's size goes to the second: its magic is sought in the four bytes behind the wrong one.
  ByteBuilder stream = MaskTableHeader("HPPM", 2);
  for (const std::uint32_t size : {3u, 9u}) stream.Text("HRPM").Zero(64).U32(size).Zero(64);
  stream.Text("EDPM").Text("DEPMabc");
  list.DeleteContents();
  ASSERT_TRUE(LoadBytes<CMaskParameterFile>(stream, list));
  ASSERT_EQ(list.GetEntryCount(), 2);
  EXPECT_EQ(list.Entries().At(0)->GetParamDataSize(), 0u);
  EXPECT_EQ(ParamBytes(*list.Entries().At(1)), ByteBuilder().Text("abc").Take());
}

TEST(MaskParameter, HeaderReadBeforehandIsNotReadAgain) {
  Bytes bytes = MaskParameterForm();
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  CMaskParameterFile file;
  CMaskParameterData list;
  ASSERT_TRUE(file.LoadHeader(stream));
  EXPECT_TRUE(file.LoadFile(stream, &list));
  EXPECT_EQ(list.GetEntryCount(), 2);
}

TEST(MaskParameter, WhatTheFormHasNoRoomForIsNotSaved) {
  CMaskParameterData list;
  list.AddTail(NewRecord(4, std::vector<std::uint32_t>(10, 7)));
  for (std::uint32_t id = 0; id < 15; ++id) list.Entries().At(0)->AddUsePatternID(id);
  CMaskParameterData loaded;
  ASSERT_TRUE(LoadBytes<CMaskParameterFile>(SaveBytes<CMaskParameterFile>(list).value(), loaded))
      << "10 colours and 15 IDs fit";
  EXPECT_EQ(loaded.Entries().At(0)->GetUsePatternID(14), 14u);

  list.Entries().At(0)->AddUsePatternID(15);
  EXPECT_FALSE(SaveBytes<CMaskParameterFile>(list));
  list.DeleteContents();
  list.AddTail(NewRecord(4, std::vector<std::uint32_t>(11, 7)));
  EXPECT_FALSE(SaveBytes<CMaskParameterFile>(list));
}

TEST(MaskPattern, TableIsSortedAndHoldsAnIdOnce) {
  CMaskPatternData table;
  CMaskPatternDataEntry* const three = NewPattern(3, {1});
  EXPECT_TRUE(table.Add(NewPattern(7)));
  EXPECT_TRUE(table.Add(three));
  EXPECT_TRUE(table.Add(NewPattern(0xFFFFFFFF)));
  EXPECT_TRUE(table.Add(NewPattern(5)));
  EXPECT_FALSE(table.Add(NewPattern(3, {2})));
  EXPECT_FALSE(table.Add(three)) << "the table holds it already, and it lives on";
  EXPECT_FALSE(table.Add(nullptr));
  EXPECT_EQ(table.GetEntry(3), three);
  EXPECT_EQ(PatternBytes(*table.GetEntry(3)), Bytes{1});
  EXPECT_EQ(table.GetEntry(4), nullptr);
  EXPECT_NE(table.GetEntry(-1), nullptr);
  EXPECT_EQ(table.GetEntryCount(), 4);

  std::vector<std::uint32_t> ids;
  bool more = table.GetFirstPosition();
  while (more) ids.push_back(table.GetNextPosition(more)->GetMaskPatternID());
  EXPECT_EQ(ids, (std::vector<std::uint32_t>{3, 5, 7, 0xFFFFFFFF}));
  EXPECT_EQ(table.GetNextPosition(more), nullptr);
}

TEST(MaskPattern, FormIsExact) {
  CMaskPatternData table;
  EXPECT_EQ(SaveBytes<CMaskPatternFile>(table), MaskTableHeader("HTPM", 0).Take());
  table.Add(NewPattern(7, {7, 7}));
  table.Add(NewPattern(3, {3, 3, 3}));
  table.Add(NewPattern(5));
  EXPECT_EQ(SaveBytes<CMaskPatternFile>(table), MaskPatternForm().Take());
}

TEST(MaskPattern, BlocksGoToPatternsInOrderOfTheirIds) {
  CMaskPatternData table;
  table.Add(NewPattern(4, {4}));
  // 3 stands twice and 4 is taken; 5 takes the size of the second record, and the last block stays unread.
  const Bytes repeated = PatternRecords({{3, 1}, {3, 2}, {4, 9}, {5, 3}}).Text("EDPMa").Text("EDPMbc").Text("EDPMdef");
  Diagnosis diagnosis;
  ASSERT_TRUE(LoadBytes<CMaskPatternFile>(repeated, table, &diagnosis));
  EXPECT_EQ(diagnosis.Findings().size(), 1u);
  EXPECT_EQ(table.GetEntryCount(), 3);
  EXPECT_EQ(PatternBytes(*table.GetEntry(3)), ByteBuilder().Text("a").Take());
  EXPECT_EQ(PatternBytes(*table.GetEntry(4)), Bytes{4});
  EXPECT_EQ(PatternBytes(*table.GetEntry(5)), ByteBuilder().Text("bc").Take());

  // Out of order, with a wrong magic: the second pattern stays empty and leaves its size unused.
  CMaskPatternData other;
  const Bytes unordered = PatternRecords({{9, 1}, {6, 2}, {8, 3}}).Text("EDPMa").Text("DEPM").Text("EDPMdef");
  ASSERT_TRUE(LoadBytes<CMaskPatternFile>(unordered, other));
  EXPECT_EQ(PatternBytes(*other.GetEntry(6)), ByteBuilder().Text("a").Take());
  EXPECT_EQ(other.GetEntry(8)->GetMaskPatternSize(), 0u);
  EXPECT_EQ(PatternBytes(*other.GetEntry(9)), ByteBuilder().Text("def").Take());
}

TEST(MaskPattern, ManyIdsInDescendingOrderLoadAtOnce) {
  constexpr std::uint32_t kCount = 60000;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> records;
  for (std::uint32_t id = kCount; id > 0; --id) records.emplace_back(id, 0);
  ByteBuilder builder = PatternRecords(records);
  for (std::uint32_t i = 0; i < kCount; ++i) builder.Text("EDPM");
  CMaskPatternData table;
  table.Add(NewPattern(0));
  table.Add(NewPattern(kCount + 1));
  ASSERT_TRUE(LoadBytes<CMaskPatternFile>(builder, table));
  EXPECT_EQ(table.GetEntryCount(), static_cast<int>(kCount) + 2);
  EXPECT_NE(table.GetEntry(static_cast<int>(kCount)), nullptr);
}

TEST(MaskData, CopiesAreDeepAndBorrowedEntriesLiveOn) {
  CMaskParameterData list;
  list.AddTail(NewRecord(4, {1}, {1, 2}));
  CMaskPatternData table;
  table.Add(NewPattern(3, {5}));
  CMaskParameterData listCopy = list;
  CMaskPatternData tableCopy = table;
  list.Entries().At(0)->GetParamDataBuffer()[0] = 9;
  table.GetEntry(3)->GetMaskPatternBuffer()[0] = 9;
  EXPECT_EQ(ParamBytes(*listCopy.Entries().At(0)), (Bytes{1, 2}));
  EXPECT_EQ(PatternBytes(*tableCopy.GetEntry(3)), Bytes{5});
  listCopy = list;
  tableCopy = table;
  EXPECT_EQ(ParamBytes(*listCopy.Entries().At(0)), (Bytes{9, 2}));
  EXPECT_EQ(PatternBytes(*tableCopy.GetEntry(3)), Bytes{9});

  CMaskParameterDataEntry borrowed;
  CMaskParameterData borrowing;
  borrowing.SetAutoDelete(false);
  borrowing.AddTail(&borrowed);
  CMaskParameterData owning = borrowing;
  EXPECT_TRUE(owning.IsAutoDelete());
  borrowing.DeleteContents();
  EXPECT_EQ(borrowing.GetEntryCount(), 0);
  EXPECT_EQ(owning.GetEntryCount(), 1);
}

}  // namespace
}  // namespace nvx::test
