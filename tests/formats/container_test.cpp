#include "support/entry_bytes.h"
#include "support/forms_in_memory.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file.h>

#include <gtest/gtest.h>

namespace nvx::test {
namespace {

// For target type 11 and device type 22.
Bytes Container(const std::vector<EntryBytes>& entries, std::uint32_t route = 4) {
  return With(With(ContainerOf(entries, route), 12, 11), 20, 22);
}

bool Load(const Bytes& bytes, CProfileData& data, Diagnosis* diagnosis = nullptr) {
  return LoadBytes<CProfileFileQCT>(bytes, data, diagnosis);
}

TEST(Container, LoadsEntriesWithTheirFlagsAndSavesTheSameBytes) {
  const std::vector<EntryBytes> entries{{6, 6, {1, 2, 3}, 1, 0x01020304, "first"}, {14, 7, {}}, {3, 6, {9}, 0, 5, ""}};
  const Bytes bytes = Container(entries);
  EXPECT_EQ(bytes.size(), 32u + 3 * 292 + 3 * 4 + 4);
  CProfileData data;
  ASSERT_TRUE(Load(bytes, data));
  EXPECT_EQ(data.GetEntryCount(4), 3);
  CProfileDataEntry* const first = data.GetProfileDataEntry(4, 6);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->GetOptionInfo(), 0x01020304u);
  EXPECT_STREQ(first->GetLabelString(), "first");
  EXPECT_EQ(BytesOf(*first), (Bytes{1, 2, 3})) << "a payload that does not parse keeps its bytes";
  EXPECT_EQ(data.GetProfileDataEntry(4, 14)->GetSize(), 0u);

  data.SetTargetType(11);
  data.SetDeviceType(22);
  EXPECT_EQ(SaveBytes<CProfileFileQCT>(data, 4), bytes);
  EXPECT_EQ(CProfileFileQCT::GetSavedSize(data, 4), bytes.size());
  EXPECT_FALSE(SaveBytes<CProfileFileQCT>(data, 8)) << "no such route";
  CNvxMemFile none;
  EXPECT_FALSE(CProfileFileQCT().SaveData(none, nullptr, 4));
}

TEST(Container, StartsAtItsLoadPoint) {
  Bytes bytes(100, 0xEE);
  const Bytes container = Container({{6, 6, {1, 2, 3}}});
  EXPECT_EQ(container.size(), 331u);
  bytes.insert(bytes.end(), container.begin(), container.end());
  CNvxMemFile stream(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  CProfileFileQCT format;
  format.SetOffsetLoadPoint(100);
  CProfileData data;
  EXPECT_TRUE(format.LoadData(stream, &data, false));
  EXPECT_EQ(stream.GetPosition(), 431u);
  CProfileData headerOnly;
  EXPECT_TRUE(format.LoadData(stream, &headerOnly, true));
  EXPECT_FALSE(headerOnly.GetRouteStartPos());
  format.SetOffsetLoadPoint(99);
  EXPECT_FALSE(format.LoadData(stream, &data, false));
}

TEST(Container, AnEmptyTableLoadsWithoutARoute) {
  CProfileData data;
  EXPECT_TRUE(Load(Container({}), data));
  EXPECT_FALSE(data.GetRouteStartPos());
  CNvxMemFile file;
  EXPECT_FALSE(CProfileFileQCT().SaveData(file, &data, 1));
  EXPECT_EQ(file.Buffer, nullptr) << "nothing is written of a route that is not there";
}

TEST(Container, RefusesWhatIsBrokenAndSaysWhere) {
  struct Case {
    Bytes bytes;
    std::uint64_t offset;
    std::string rule;
  };
  const Bytes good = Container({{6, 6, {1, 2, 3}}});
  const std::vector<Case> cases{
      {With(good, 0, 1), 0, "container header: wrong magic"},
      {With(Container({}), 8, 0x00020000), 8, "container header: wrong version"},
      {With(good, 24, 2), 324, "entry header: wrong magic"},
      {With(good, 24, 0xFFFFFFFF), 32, "entry table: count beyond the end"},
      {With(good, 32, 0), 32, "entry header: wrong magic"},
      {With(good, 324, 0), 328, "entry body: wrong magic"},
      {With(good, 40, 11), 328, "entry header: unknown used type"},
      {With(good, 40, 0xFFFFFFFF), 328, "entry header: unknown used type"},
      {With(good, 44, 5), 328, "entry header: format type does not belong to the used type"},
      {With(good, 48, 3), 328, "entry header: body size below 4"},
      {With(good, 48, 8), 328, "entry header: body size beyond the end"},
      {With(good, 48, 0xFFFFFFFF), 328, "entry header: body size beyond the end"},
  };
  for (const Case& c : cases) {
    CProfileData data;
    Diagnosis diagnosis;
    EXPECT_FALSE(Load(c.bytes, data, &diagnosis)) << c.rule;
    EXPECT_FALSE(Load(c.bytes, data)) << c.rule;
    if (c.rule == "entry header: wrong magic" && c.offset == 324) {
      EXPECT_TRUE(diagnosis.HasErrors());
      continue;
    }
    ASSERT_EQ(diagnosis.Findings().size(), 1u) << c.rule;
    EXPECT_EQ(diagnosis.Findings()[0].rule, c.rule);
    EXPECT_EQ(diagnosis.Findings()[0].offset, c.offset) << c.rule;
  }
  for (std::size_t size = 0; size < good.size(); ++size) {
    CProfileData data;
    EXPECT_FALSE(Load(First(good, size), data)) << size;
  }
}

TEST(ProfileAccess, InitLoadsReplacesAndWordsItsFailures) {
  const TempFolder folder;
  WriteBytes(folder.File("a.QCT"), Container({{6, 6, {1}}}, 1));
  WriteBytes(folder.File("bad.qct"), Container({{11, 6, {1}}}));
  WriteBytes(folder.File("a.icc"), Container({{6, 6, {1}}}));
  CProfileAccess access;
  CError error;
  EXPECT_EQ(access.GetProfileInfo(), nullptr);
  EXPECT_EQ(access.GetProfileInfoObject(), nullptr);
  EXPECT_FALSE(access.IsICCRoot());
  ASSERT_TRUE(access.Init(folder.WideFile("a.QCT").c_str(), &error));
  EXPECT_EQ(error.GetErrorReason(), 0u);
  EXPECT_EQ(access.GetProfileLoadFormat(), 1);
  EXPECT_TRUE(access.IsICCRoot());
  EXPECT_FALSE(access.IsV3Route());
  EXPECT_EQ(std::u16string(access.GetProfileInfo()->FileName), u"a.QCT");

  EXPECT_FALSE(access.Init(folder.WideFile("bad.qct").c_str(), &error));
  EXPECT_EQ(error.GetErrorReason(), 0x08008001u);
  EXPECT_EQ(std::u16string(error.GetErrorCommentW()),
            u"Profile: Load Error (file name:" + folder.WideFile("bad.qct") + u")");
  EXPECT_EQ(access.GetProfileData(), nullptr);

  for (const std::u16string& path : {folder.WideFile("none"), folder.WideFile("a.icc"), std::u16string(u"/")}) {
    EXPECT_FALSE(access.Init(path.c_str(), &error));
    EXPECT_EQ(std::u16string(error.GetErrorCommentW()), u"Profile: File Format Error (file name:" + path + u")");
  }
}

}  // namespace
}  // namespace nvx::test
