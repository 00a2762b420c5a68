#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/lut.h>

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <memory>
#include <string>

namespace nvx::test {
namespace {

Bytes SamplesOf(CLutDataEntry& node) { return {node.GetRefBuffer(), node.GetRefBuffer() + node.GetCount()}; }

Bytes SamplesOf(CLutData& table, std::size_t size) {
  const std::uint8_t* const samples = table.GetRefBuffer();
  return {samples, samples + size};
}

class OpenTable : public CLutData {
 public:
  using CLutData::Add;
  using CLutData::RemoveAllLutDataEntry;
};

TEST(LutData, InitialisesNodesOfZerosAndLeavesNoTraceOfTheTableBefore) {
  CLutData3D table;
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_EQ(table.GetLutDataSize(), 0u);
  table.Initialize(4, 17);
  EXPECT_EQ(table.GetSize(), 4913);
  EXPECT_EQ(table.GetLutDataSize(), 19652u);
  EXPECT_EQ(SamplesOf(table, 19652), Bytes(19652));
  ASSERT_NE(table.GetAt(4912), nullptr);
  table.GetAt(4912)->SetAt(3, 9);
  table.GetAt(0)->Add(1);
  table.GetAtInputChannelInf(0)->SetChannelName("old");

  table.Initialize(2, 3, 3);
  EXPECT_EQ(table.GetSize(), 9);
  EXPECT_EQ(table.GetLutDataSize(), 27u);
  EXPECT_EQ(SamplesOf(table, 27), Bytes(27));
  EXPECT_STREQ(table.GetAtInputChannelInf(0)->GetChannelName(), "");
  for (const int index : {-1, 9, INT_MAX}) EXPECT_EQ(table.GetAt(index), nullptr);
  EXPECT_EQ(table.GetAtInputChannelInf(2), nullptr);
  EXPECT_EQ(table.GetAtOutputChannelInf(-1), nullptr);

  table.DeleteAllElement();
  EXPECT_EQ(table.GetSize(), 0);
  EXPECT_EQ(table.GetAtOutputChannelInf(0), nullptr);
  EXPECT_EQ(table.GetGridCount(), 3u);
}

TEST(LutData, CountsNodesAsAPower) {
  const std::array<int, 5> kCases[] = {// inputs, outputs, grid, nodes, bytes
                                       {3, 4, 0, 0, 0},    {0, 4, 5, 1, 4},       {0, 0, 0, 1, 0},
                                       {1000, 4, 1, 1, 4}, {4, 1, 9, 6561, 6561}, {1, 0, INT_MAX, INT_MAX, 0}};
  for (const auto& [inputs, outputs, grid, nodes, bytes] : kCases) {
    const auto count = [](int number) { return static_cast<std::uint32_t>(number); };
    CLutData table(count(inputs), count(outputs), count(grid));
    EXPECT_EQ(table.GetSize(), nodes) << inputs << " " << grid;
    EXPECT_EQ(table.GetLutDataSize(), count(bytes)) << inputs << " " << grid;
  }
  // More than the results can tell: counts without nodes.
  for (const std::uint32_t inputs : {4u, 100u}) {
    CLutData table(inputs, 4, 0xFFFFFFFF);
    EXPECT_EQ(table.GetSize(), 0);
    EXPECT_EQ(table.GetGridCount(), 0xFFFFFFFFu);
    EXPECT_NE(table.GetAtOutputChannelInf(3), nullptr);
  }
}

TEST(LutData, NodesAreViewsUntilTheirCountChanges) {
  CLutData table(1, 2, 300);
  table.GetAt(1)->SetAt(0, 1);
  table.GetAt(1)->GetRefBuffer()[1] = 2;
  table.GetAt(299)->SetAt(1, 3);
  const std::uint8_t* const copy = table.GetRefBuffer();
  table.GetAt(1)->SetAt(0, 99);
  EXPECT_EQ(copy[2], 1);
  EXPECT_EQ(copy[3], 2);
  EXPECT_EQ(copy[599], 3);
  EXPECT_EQ(table.GetAt(1)->GetAt(0), 99);

  // A node that grows, one that empties and one that is deleted leave their neighbours alone.
  table.GetAt(1)->Add(7);
  table.GetAt(3)->DeleteAllElement();
  table.GetAt(3)->Add(5);
  table.GetAt(297)->Delete();
  table.GetAt(0)->SetAt(1, 4);
  table.GetAt(2)->SetAt(0, 6);
  EXPECT_EQ(table.GetSize(), 300);
  EXPECT_EQ(SamplesOf(*table.GetAt(1)), (Bytes{99, 2, 7}));
  EXPECT_EQ(table.GetAt(297)->GetCount(), 0);
  Bytes expected{0, 4, 99, 2, 7, 6, 0, 5};
  expected.resize(600 + 1 - 1 - 2);
  expected.back() = 3;
  EXPECT_EQ(SamplesOf(table, expected.size()), expected);
  EXPECT_EQ(table.GetLutDataSize(), 600u);
}

TEST(LutData, TakesOverNodesThatAreAdded) {
  OpenTable table;
  table.Initialize(1, 1, 2);
  auto* const node = new CLutDataEntry;
  EXPECT_EQ(node->GetCount(), 0);
  node->Add(8);
  node->Add(9);
  table.Add(node);
  table.Add(nullptr);
  EXPECT_EQ(table.GetSize(), 3);
  EXPECT_EQ(table.GetAt(2), node);
  EXPECT_EQ(table.GetAt(3), nullptr);
  EXPECT_EQ(SamplesOf(table, 4), (Bytes{0, 0, 8, 9}));
  EXPECT_EQ(table.GetLutDataSize(), 3u);
  node->Delete();
  EXPECT_EQ(table.GetSize(), 3);
  EXPECT_EQ(table.GetAt(2)->GetCount(), 0);
  table.RemoveAllLutDataEntry();
  EXPECT_EQ(table.GetSize(), 0);

  auto* const alone = new CLutDataEntry;
  alone->Add(1);
  alone->Delete();
  CLutData* const created = CLutData::CreateLutData();
  EXPECT_EQ(created->GetSize(), 0);
  created->Delete();
}

TEST(ChromaEntry, ReadsAndSavesItsForm) {
  CSeparateChromaEntry entry;
  EXPECT_EQ(entry.GetOptionInfo(), 6u);
  ASSERT_TRUE(Parse(entry, LutForm()));
  CLutData3D& table = *entry.GetLutData();
  EXPECT_EQ(entry.GetFormatData(), &table);
  EXPECT_EQ(table.GetSize(), 8);
  EXPECT_EQ(table.GetAtInputChannelInf(2)->GetChannelCode(), 'Y');
  EXPECT_STREQ(table.GetAtInputChannelInf(1)->GetChannelName(), "M");
  EXPECT_EQ(table.GetAtOutputChannelInf(3)->GetChannelCode(), 13);
  EXPECT_EQ(table.GetAtOutputChannelInf(3)->GetChannelAttribute(), 0x80000003u);
  EXPECT_EQ(SamplesOf(*table.GetAt(7)), (Bytes{29, 30, 31, 32}));
  ASSERT_TRUE(entry.DataToBuffer());

  // The form has no place for a node with a count of its own.
  const Bytes before = BytesOf(entry);
  table.GetAt(0)->Add(0xEE);
  EXPECT_FALSE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), before);
}

TEST(ChromaEntry, ReducesCodesAndCutsNames) {
  ByteBuilder form = LutHeader(1, 1, 1);
  form.Append(LutChannel(0x1FF, 0, std::string(127, 'a')))
      .Append(LutChannel(0xABCDEF01, 5, std::string(320, 'b')))
      .U8(77);
  CSeparateChromaEntry entry;
  Diagnosis diagnosis;
  entry.SetDiagnosis(&diagnosis);
  ASSERT_TRUE(Parse(entry, form));
  EXPECT_EQ(diagnosis.Findings().size(), 1u);
  CLutData3D& table = *entry.GetLutData();
  EXPECT_STREQ(table.GetAtInputChannelInf(0)->GetChannelName(), std::string(127, 'a').c_str());
  EXPECT_STREQ(table.GetAtOutputChannelInf(0)->GetChannelName(), std::string(127, 'b').c_str());
  EXPECT_EQ(table.GetAtOutputChannelInf(0)->GetChannelCode(), 1);

  CSeparateChromaEntry source;
  source.SetLabelString("source");
  const std::unique_ptr<CProfileDataEntry> other(CProfileDataEntry::CreateDataEntry(CProfileDataEntry::kInfo));
  EXPECT_FALSE(entry.DoImport(other.get()));
  EXPECT_FALSE(entry.DoImport(nullptr));
  EXPECT_TRUE(entry.DoImport(&source));
  EXPECT_STREQ(entry.GetLabelString(), "");
  EXPECT_EQ(table.GetAt(0)->GetAt(0), 77);

  EXPECT_EQ(entry.GetPayloadState(), PayloadState::kPart);
  EXPECT_FALSE(entry.DataToBuffer()) << "the whole name stands in the buffer alone";
  EXPECT_EQ(BytesOf(entry), form.Take());
  entry.DeleteBuffer();
  ASSERT_TRUE(entry.DataToBuffer());
  ByteBuilder saved = LutHeader(1, 1, 1);
  saved.Append(LutChannel(0xFF, 0, std::string(127, 'a'))).Append(LutChannel(1, 5, std::string(127, 'b'))).U8(77);
  EXPECT_EQ(BytesOf(entry), saved.Zero(1024 - 953).Take());
}

TEST(ChromaEntry, RefusesWhatTheStreamDoesNotHold) {
  const Bytes whole = LutForm();
  CSeparateChromaEntry entry;
  ASSERT_TRUE(Parse(entry, whole));
  EXPECT_FALSE(Parse(entry, First(whole, whole.size() - 1)));
  constexpr std::uint32_t kHuge = 0xFFFFFFFF;
  const std::array<std::uint32_t, 3> kCounts[] = {{kHuge, 4, 2}, {3, kHuge, 2}, {kHuge, kHuge, 1}, {3, 4, kHuge},
                                                  {3, 4, 3},     {7, 0, kHuge}, {2, 5, 65536},     {3, 0, 1291}};
  for (const auto& [inputs, outputs, grid] : kCounts) {
    ByteBuilder form = LutHeader(inputs, outputs, grid);
    for (int i = 0; i < 7; ++i) form.Append(LutChannel(1, 1, "x"));
    EXPECT_FALSE(Parse(entry, form.Zero(32))) << inputs << " " << outputs << " " << grid;
  }
  // All of that left the table alone.
  EXPECT_EQ(entry.GetLutData()->GetSize(), 8);
  EXPECT_EQ(entry.GetLutData()->GetAt(7)->GetAt(3), 32);
}

TEST(ChromaEntry, StopsAtAWrongSignature) {
  Bytes form = LutForm();
  form[280 + 4 * 336] ^= 1;
  CSeparateChromaEntry entry;
  EXPECT_FALSE(Parse(entry, form));
  CLutData3D& table = *entry.GetLutData();
  EXPECT_EQ(table.GetSize(), 8);
  EXPECT_EQ(SamplesOf(table, 32), Bytes(32));
  EXPECT_EQ(table.GetAtOutputChannelInf(0)->GetChannelCode(), 10);
  EXPECT_EQ(table.GetAtOutputChannelInf(1)->GetChannelCode(), 0);
}

TEST(LutFile, ReadsWhereTheStreamStands) {
  ByteBuilder bytes;
  bytes.Fill(0xCC, 100).Append(LutForm()).Fill(0xDD, 5);
  Bytes block = bytes;
  CNvxMemFile stream(block.data(), static_cast<std::uint32_t>(block.size()));
  stream.Seek(100, kFromBegin);
  CLutFile file;
  CLutData table;
  ASSERT_TRUE(file.LoadHeader(stream));
  ASSERT_TRUE(file.LoadFile(stream, &table));
  EXPECT_EQ(stream.GetPosition(), 100u + 2664);
  EXPECT_EQ(table.GetAt(0)->GetAt(0), 1);
}

}  // namespace
}  // namespace nvx::test
