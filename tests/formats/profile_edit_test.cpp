// Parts of a profile file, replaced where they stand.
#include "support/files.h"
#include "support/qpf_builder.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_edit.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace nvx::test;
using nvx::ProfileEdit;

class Edit : public ::testing::Test {
 protected:
  Bytes Profile() {
    const std::vector<StoredEntry> entries{
        {6, 6, CurveSet(2, {1, 2, 3, 4}), 7, 5, "lin"}, {7, 6, {9, 9, 9}, 0, 0, "broken"}, Placeholder()};
    return IccFile({{"desc", DescriptionTag("frame")},
                    {"NVX1", EntryTag(entries)},
                    {"NVX2", MediaTag({{9, u"Glossy"}})},
                    {"NVX5", ByteBuilder(Opening()).Append(MaskStream(6)).U8(0)},
                    {"last", {1, 2, 3}}});
  }
  void Open(const Bytes& bytes, ProfileEdit& edit) {
    WriteBytes(folder_.File("p"), bytes);
    ASSERT_TRUE(edit.Open(folder_.WideFile("p").c_str()));
  }
  Bytes BytesOf(const ProfileEdit& edit, std::uint32_t usedType) {
    const auto bytes = edit.EntryBytes(usedType);
    return bytes ? Bytes(bytes->begin(), bytes->end()) : Bytes();
  }

  TempFolder folder_;
};

TEST_F(Edit, OfOneLengthChangesNoOtherByte) {
  const Bytes before = Profile();
  ProfileEdit edit;
  Open(before, edit);
  EXPECT_EQ(edit.GetFormat(), 4);
  EXPECT_EQ(edit.Image(), before);
  EXPECT_EQ(BytesOf(edit, 7), (Bytes{9, 9, 9}));
  EXPECT_EQ(BytesOf(edit, 27).size(), MaskStream(6).size() + 1) << "all that stands behind the opening";
  EXPECT_FALSE(edit.EntryBytes(10)) << "the frame is no entry";
  ASSERT_TRUE(edit.SetEntryBytes(7, Bytes{9, 8, 9}));
  ASSERT_TRUE(edit.SetEntryHeader(6, {true, 6, "lin"}));
  edit.Headers().GetProfileInfo()->HalftoneCode = 99;
  ASSERT_TRUE(edit.StoreHeaders());
  const Bytes& after = edit.Image();
  ASSERT_EQ(after.size(), before.size());
  int differences = 0;
  for (std::size_t i = 0; i < before.size(); ++i) differences += before[i] != after[i] ? 1 : 0;
  EXPECT_EQ(differences, 3) << "complete is true as 7, too";
}

TEST_F(Edit, OfAnotherLengthKeepsAllOtherTags) {
  Bytes before = Profile();
  before.insert(before.end(), {'t', 'a', 'i', 'l'});
  ProfileEdit edit;
  Open(before, edit);
  const Bytes masks = BytesOf(edit, 27);
  const Bytes curves = BytesOf(edit, 6);
  ASSERT_TRUE(edit.SetEntryBytes(7, Bytes{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(BytesOf(edit, 7), (Bytes{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(BytesOf(edit, 6), curves);
  EXPECT_EQ(BytesOf(edit, 27), masks);
  EXPECT_EQ(Bytes(edit.Image().end() - 4, edit.Image().end()), (Bytes{'t', 'a', 'i', 'l'}));
  ASSERT_TRUE(edit.SetEntryBytes(7, Bytes{9, 9, 9}));
  ASSERT_TRUE(edit.SetEntryBytes(27, Bytes(masks.begin(), masks.end())));
  WriteBytes(folder_.File("out"), edit.Image());
  CProfileAccess access;
  CError error;
  EXPECT_TRUE(access.Init(folder_.WideFile("out").c_str(), &error));
  EXPECT_FALSE(edit.SetEntryBytes(8, Bytes{1})) << "no entry comes into being";
  EXPECT_FALSE(edit.SetEntryBytes(27, Bytes{})) << "a tag with its opening alone would not load";
}

TEST_F(Edit, TakesBytesOutOfTheFileItself) {
  ProfileEdit edit;
  Open(ReadBytes(NVXPROFILE_SOURCE_FOLDER "/fuzz/corpus/container/curves"), edit);
  const Bytes longer = BytesOf(edit, 6);
  ASSERT_GT(longer.size(), BytesOf(edit, 7).size());
  ASSERT_TRUE(edit.SetEntryBytes(7, *edit.EntryBytes(6)));
  EXPECT_EQ(BytesOf(edit, 7), longer);
  EXPECT_EQ(BytesOf(edit, 6), longer);
  ASSERT_TRUE(edit.SetEntryHeader(7, {false, 4711, "label"}));
  EXPECT_EQ(edit.EntryHeader(7)->optionInfo, 4711u);
  EXPECT_EQ(edit.EntryHeader(7)->label, "label");
  EXPECT_FALSE(edit.SetEntryHeader(30, {})) << "no such entry";
  EXPECT_FALSE(edit.StoreHeaders()) << "a container has none";
}

TEST_F(Edit, RefusesTablesThatDoNotHold) {
  const Bytes whole = Profile();
  const Bytes magic{'I', 'H', 'E', 'P'};
  const auto place = std::search(whole.begin(), whole.end(), magic.begin(), magic.end()) - whole.begin();
  for (std::ptrdiff_t i = place; i < place + 28; ++i) {
    Bytes broken = whole;
    broken[static_cast<std::size_t>(i)] = 0xEE;
    WriteBytes(folder_.File("p"), broken);
    ProfileEdit edit;
    if (!edit.Open(folder_.WideFile("p").c_str())) continue;
    // What opens keeps within the file.
    for (std::uint32_t type = 0; type < 31; ++type) edit.SetEntryBytes(type, BytesOf(edit, type));
    EXPECT_EQ(edit.Image(), broken);
  }
  ProfileEdit edit;
  Open(ReadBytes(NVXPROFILE_SOURCE_FOLDER "/fuzz/corpus/container/curves"), edit);
  Bytes container(edit.Image().begin(), edit.Image().end());
  container[32] = 0xEE;  // of the magic of an entry header
  WriteBytes(folder_.File("p.qct"), container);
  EXPECT_FALSE(edit.Open(folder_.WideFile("p.qct").c_str()));
  nvx::Diagnosis diagnosis;
  EXPECT_FALSE(edit.Open(u"/no/such/file", &diagnosis));
  EXPECT_TRUE(edit.Image().empty());
  EXPECT_TRUE(diagnosis.HasErrors());
}

}  // namespace
