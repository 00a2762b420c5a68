#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/model_info.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace nvx::test {
namespace {

using Get = void (CModelData::*)(char*) const;

std::string Name(const CModelData& data, Get get) {
  char name[CModelData::kNameLength];
  std::memset(name, 'x', sizeof name);
  (data.*get)(name);
  return name;
}

CInfoData& InfoOf(CInfoEntry& entry) { return dynamic_cast<CInfoData&>(*entry.GetFormatData()); }

TEST(ModelEntry, ReadsARecordAndSavesItInOneStep) {
  CModelEntry entry;
  EXPECT_TRUE(entry.GetModelData()->IsCmykMode());
  ASSERT_TRUE(Parse(entry, ModelRecord(0x00010002, 2).U32(7)));
  const CModelData& data = *entry.GetModelData();
  EXPECT_EQ(Name(data, &CModelData::GetModelName), "JV300");
  EXPECT_EQ(Name(data, &CModelData::GetInksetName), "Inkset 4");
  EXPECT_EQ(Name(data, &CModelData::GetMediaName), "Glossy");
  EXPECT_EQ(Name(data, &CModelData::GetParametersetName), "Fine");
  EXPECT_EQ(data.GetVDType(), 7u);
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), ToCapacity(ModelRecord(0x00010002, 1).U32(7))) << "any number but 0 says yes";
}

TEST(ModelEntry, EndsARecordOfTheFirstVersionBeforeTheVdType) {
  CModelEntry entry;
  entry.GetModelData()->SetVDType(9);
  Bytes bytes = ModelRecord(0x00010000, 0);
  ASSERT_TRUE(Parse(entry, bytes));
  EXPECT_EQ(entry.GetModelData()->GetVDType(), 0u);
  EXPECT_FALSE(entry.GetModelData()->IsCmykMode());
  ASSERT_TRUE(Parse(entry, ModelRecord(0x00010000, 0).U32(5)));
  EXPECT_EQ(entry.GetModelData()->GetVDType(), 0u);
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), ToCapacity(ModelRecord(0x00010002, 0).U32(0)));

  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  CModelFile file;
  ASSERT_TRUE(file.LoadHeader(stream));
  EXPECT_EQ(stream.GetPosition(), 268u);
}

TEST(ModelEntry, TakesAnyVersionAndAnyLengthBehindTheSignature) {
  for (const std::uint32_t version : {0x00010001u, 0x00010003u, 0xFFFFFFFFu}) {
    CModelEntry entry;
    ASSERT_TRUE(Parse(entry, ModelRecord(version).U32(3)));
    EXPECT_EQ(entry.GetModelData()->GetVDType(), 3u);
  }
  const Bytes whole = ModelRecord(0x00010002).U32(3);
  for (std::size_t size = 1; size < whole.size(); ++size) {
    CModelEntry entry;
    ASSERT_EQ(Parse(entry, First(whole, size)), size >= 4) << size;
    if (size < 4) continue;
    EXPECT_EQ(Name(*entry.GetModelData(), &CModelData::GetModelName).size(),
              std::min<std::size_t>(size < 16 ? 0 : size - 16, 5));
  }
}

TEST(ModelEntry, CutsNamesWithoutHarmToTheirNeighbours) {
  const std::string longName(300, 'n');
  CModelEntry entry;
  CModelData& data = *entry.GetModelData();
  data.SetVDType(0x01020304);
  data.SetMediaName("media");
  data.SetModelName(longName.c_str());
  data.SetInksetName(nullptr);
  data.SetParametersetName(longName.c_str());
  EXPECT_EQ(Name(data, &CModelData::GetModelName), std::string(127, 'n'));
  EXPECT_EQ(Name(data, &CModelData::GetMediaName), "media");
  EXPECT_EQ(Name(data, &CModelData::GetInksetName), "");
  EXPECT_EQ(Name(data, &CModelData::GetParametersetName), std::string(63, 'n'));
  EXPECT_TRUE(data.IsCmykMode());

  ASSERT_TRUE(entry.DataToBuffer());
  ByteBuilder record;
  record.Text("LDOM").U32(276, 0x00010002, 1);
  record.Fill('n', 63).Zero(65).Text("media", 64).Fill('n', 63).U8(0).U32(0x01020304);
  EXPECT_EQ(BytesOf(entry), ToCapacity(record));

  // A field without a terminator ends where it ends.
  ByteBuilder unterminated;
  unterminated.Text("LDOM").U32(276, 0x00010002, 1).Fill('a', 256).U32(0);
  ASSERT_TRUE(Parse(entry, unterminated));
  EXPECT_EQ(Name(data, &CModelData::GetModelName), std::string(63, 'a'));
  EXPECT_EQ(Name(data, &CModelData::GetParametersetName), std::string(63, 'a'));
}

TEST(InfoEntry, ReadsARecordAndSavesItInOneStep) {
  CInfoEntry entry;
  EXPECT_TRUE(entry.IsComplete());
  CInfoData& data = InfoOf(entry);
  std::uint32_t size = 0;
  EXPECT_EQ(Bytes(data.GetReserveBuffer(&size), data.GetReserveBuffer(nullptr) + 192), Bytes(192));
  EXPECT_EQ(size, 192u);
  EXPECT_STREQ(data.GetComment(), "");

  ASSERT_TRUE(Parse(entry, InfoRecord()));
  EXPECT_STREQ(data.GetVersionStr(), "1.2.3");
  EXPECT_STREQ(data.GetComment(), "A comment");
  EXPECT_STREQ(data.GetUserNameW(), "User");
  EXPECT_EQ(data.GetReserveBuffer(nullptr)[191], 0xA5);

  CInfoEntry other;
  EXPECT_FALSE(other.DoImport(&entry));

  EXPECT_FALSE(Parse(entry, InfoRecord(0x00010001)));
  EXPECT_STREQ(data.GetUserNameW(), "User") << "a refused record leaves the one before";
}

TEST(InfoEntry, CutsTextsWithoutHarmToTheirNeighbours) {
  CInfoEntry entry;
  CInfoData& data = InfoOf(entry);
  data.SetComment("kept");
  data.SetVersionStr(std::string(200, 'v').c_str());
  data.SetUserName(std::string(64, 'u').c_str());
  EXPECT_STREQ(data.GetVersionStr(), std::string(64, 'v').c_str());
  EXPECT_STREQ(data.GetComment(), "kept");
  const Bytes reserve(192, 7);
  data.SetReserveBuffer(reserve.data());
  ASSERT_TRUE(entry.DataToBuffer());
  ByteBuilder record;
  record.Text("OFNI").U32(400, 0x00010000, 0);
  record.Fill('v', 63).U8(0).Text("kept", 64).Fill('u', 63).U8(0).Fill(7, 192);
  EXPECT_EQ(BytesOf(entry), ToCapacity(record));
}

}  // namespace
}  // namespace nvx::test
