#include "support/entry_bytes.h"
#include "support/media_builder.h"

#include <nvxprofile/diagnosis.h>
#include <nvxprofile/media_property.h>

#include <gtest/gtest.h>

#include <vector>

namespace nvx::test {
namespace {

std::vector<std::int32_t> All(CMediaPropertyDataEntry& block) {
  return {block.GetRefBuffer(), block.GetRefBuffer() + 16};
}

TEST(MediaBlock, HasAsManyParametersAsItsTypeSays) {
  const auto parameterMax = [](std::uint32_t usedType, std::uint32_t count) {
    CMediaPropertyDataEntry block;
    block.SetUsedType(usedType, count);
    EXPECT_EQ(block.GetUsedType(), usedType);
    return block.GetParameterMax();
  };
  const std::int32_t fixed[] = {0, 1, 2, 1, 1, 1, 3, 16, 8, 1, 1, 1, 0};
  for (std::uint32_t type = 0; type < std::size(fixed); ++type) EXPECT_EQ(parameterMax(type, 0), fixed[type]) << type;
  EXPECT_EQ(parameterMax(7, 5), 16);
  EXPECT_EQ(parameterMax(12, 7), 0);
  EXPECT_EQ(parameterMax(2, 4), 4);
  EXPECT_EQ(parameterMax(6, 1), 1);
  EXPECT_EQ(parameterMax(9, 17), 16);
  EXPECT_EQ(parameterMax(2, 0xFFFFFFFF), 16);
}

TEST(MediaBlock, NeverLeavesItsSixteenParameters) {
  CMediaPropertyDataEntry block;
  EXPECT_FALSE(block.SetParameter(0, 1));
  block.SetUsedType(2, 2);
  EXPECT_TRUE(block.SetParameter(1, -5));
  EXPECT_FALSE(block.SetParameter(2, 1));
  EXPECT_FALSE(block.SetParameter(-1, 1));
  block.GetRefBuffer()[15] = 42;
  EXPECT_EQ(block.GetParameter(1), -5);
  EXPECT_EQ(block.GetParameter(15), 42);
  for (const std::int32_t index : {-1, 16, INT32_MAX, INT32_MIN}) EXPECT_EQ(block.GetParameter(index), 0);
}

TEST(MediaEntry, ReadsAndSavesItsForm) {
  CMediaPropertyEntry entry;
  // A type without parameters, two blocks of one type, and values beyond what is in use.
  Bytes bytes = MediaForm({{2, 3, {40, -1, 50, 99}}, {12, 7, {8, 8}}, {1, 9, {3}}, {2, 0, {1, 2, 3}}});
  bytes[16] = 'X';  // the signature of an entry header is not looked at
  bytes[20] = 77;   // nor is its size
  ASSERT_TRUE(Parse(entry, bytes));
  CMediaPropertyData& data = *entry.GetMediaPropertyData();
  EXPECT_EQ(data.GetPropertyCount(), 4);
  ASSERT_NE(data.Find(2), nullptr);
  EXPECT_EQ(All(*data.Find(2)), (std::vector<std::int32_t>{40, -1, 50, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(data.Find(12)->GetParameterMax(), 0);
  EXPECT_EQ(data.Find(3), nullptr);
  bool more = data.GetHeadPosition();
  std::vector<std::uint32_t> types;
  while (more) types.push_back(data.GetNext(more)->GetUsedType());
  EXPECT_EQ(types, (std::vector<std::uint32_t>{2, 12, 1, 2}));

  // What is in the array is saved, in use or not.
  data.Find(1)->GetRefBuffer()[15] = -2;
  ASSERT_TRUE(entry.DataToBuffer());
  MediaBlock correct{1, 1, std::vector<std::int32_t>(16)};
  correct.values[0] = 3;
  correct.values[15] = -2;
  EXPECT_EQ(BytesOf(entry),
            MediaForm({{2, 3, {40, -1, 50}}, {12, 0, {}}, correct, {2, 2, {1, 2}}}).Zero(1024 - 368).Take());
}

TEST(MediaEntry, RoundsItsBufferUpToStepsOf1024) {
  CMediaPropertyEntry entry;
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), MediaForm({}).Zero(1008).Take());
  ASSERT_TRUE(Parse(entry, MediaForm({})));
  EXPECT_EQ(entry.GetMediaPropertyData()->GetPropertyCount(), 0);
  for (int i = 0; i < 12; ++i) {
    entry.GetMediaPropertyData()->AddTail(CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(1, 1));
  }
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(entry.GetSize(), 2048u);
  ASSERT_TRUE(entry.BufferToData());
  EXPECT_EQ(entry.GetMediaPropertyData()->GetPropertyCount(), 12);
}

// forms_test says what of a cut form loads.
TEST(MediaEntry, ReadsWhatIsMissingOfTheLastBlockAsZero) {
  const Bytes whole = MediaForm({{1, 1, {0x01020304}}, {7, 16, std::vector<std::int32_t>(16, -1)}});
  for (std::size_t missing = 1; missing <= 64; ++missing) {
    CMediaPropertyEntry entry;
    Diagnosis diagnosis;
    entry.SetDiagnosis(&diagnosis);
    ASSERT_TRUE(Parse(entry, First(whole, whole.size() - missing)));
    EXPECT_FALSE(diagnosis.Findings().empty());
    const std::int32_t last = missing < 4 ? static_cast<std::int32_t>(0xFFFFFFFFu >> (8 * missing)) : 0;
    EXPECT_EQ(entry.GetMediaPropertyData()->Find(7)->GetParameter(15), last);
  }
  CMediaPropertyEntry broken;
  EXPECT_FALSE(Parse(broken, With(whole, 16 + 2 * 20 + 68, 'X')));
  EXPECT_EQ(broken.GetMediaPropertyData()->Find(1)->GetParameter(0), 0x01020304) << "what came before stays";
  EXPECT_EQ(broken.GetMediaPropertyData()->Find(7)->GetParameter(0), 0);
  ASSERT_TRUE(Parse(broken, MediaForm({{6, 0xFFFFFFFF, std::vector<std::int32_t>(16, 7)}})));
  EXPECT_EQ(broken.GetMediaPropertyData()->Find(6)->GetParameterMax(), 16);
}

TEST(MediaEntry, NotesAParameterCountThatItsTypeDoesNotHave) {
  for (const std::uint32_t count : {1u, 5u}) {
    CMediaPropertyEntry entry;
    Diagnosis diagnosis;
    entry.SetDiagnosis(&diagnosis);
    ASSERT_TRUE(Parse(entry, MediaForm({{1, count, std::vector<std::int32_t>(16, 7)}})));
    ASSERT_EQ(diagnosis.Findings().size(), count == 1 ? 0u : 1u);
    if (count == 1) continue;
    EXPECT_EQ(diagnosis.Findings()[0].rule, "entry header: parameter count does not belong to the used type");
    EXPECT_EQ(diagnosis.Findings()[0].severity, Severity::kWarning);
  }
}

}  // namespace
}  // namespace nvx::test
