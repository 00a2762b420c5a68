#include "support/entries.h"
#include "support/icc_builder.h"
#include "support/qpf_reader.h"

#include <gtest/gtest.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_icc.h>

#include <algorithm>
#include <cstdlib>

namespace nvx::test {
namespace {

TEST(ProfileFileIcc, LoadsTheWholeFileAsOneEntry) {
  const TempFolder folder;
  Bytes bytes = IccWithTags({"desc", "agfa"});
  bytes.push_back(7);  // kept, as the entry is the file
  for (const char* const name : {"a.icc", "a.icm", "a.ICC", "plain"}) {
    WriteBytes(folder.File(name), bytes);
    CProfileAccess access;
    CError error;
    ASSERT_TRUE(access.Init(folder.WideFile(name).c_str(), &error)) << name;
    EXPECT_EQ(access.GetProfileLoadFormat(), 6);
    EXPECT_TRUE(access.IsICCRoot());
    EXPECT_FALSE(access.IsV3Route());
    EXPECT_EQ(std::u16string(access.GetProfileInfo()->FileName), platform::Utf8ToWide(name));
    EXPECT_EQ(access.GetProfileInfo()->LayoutNumber, 0u);
    EXPECT_EQ(access.GetProfileInfo()->OutputFourthValue, -1);
    EXPECT_EQ(access.GetProfileInfo()->OutputCodeA, 255);
    CProfileData& data = *access.GetProfileData();
    EXPECT_EQ(data.GetEntryCount(1), 1);
    CProfileDataEntry* const entry = data.GetProfileDataEntry(1, 10);
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->IsComplete());
    EXPECT_EQ(entry->GetOptionInfo(), 2u);
    EXPECT_EQ(BytesOf(*entry), bytes);
  }
  CProfileData headerOnly;
  EXPECT_TRUE(CProfileFileICC().LoadData(folder.WideFile("a.icc").c_str(), &headerOnly, true));
  EXPECT_FALSE(headerOnly.GetEntryStartPos());
}

TEST(ProfileFileIcc, SavesUnderTheNewName) {
  const TempFolder folder;
  const Bytes text{'t', 'e', 'x', 't'};
  WriteBytes(folder.File("a.icc"), IccFile({{"desc", DescriptionTag("old")}, {"cprt", text}}));
  CProfileData model;
  CProfileFileICC format;
  ASSERT_TRUE(format.LoadData(folder.WideFile("a.icc").c_str(), &model, false));
  ASSERT_TRUE(format.SaveData(folder.WideFile("new.icc").c_str(), &model, 99));
  const Bytes saved = ReadBytes(folder.File("new.icc"));
  const QpfReader reader(saved);
  BigBuilder description;
  description.Text("desc").U32(0, 8).Text("new.icc").U8(0).U32(0, 8).Wide(u"new.icc").U16(0, 0).U8(0).Zero(67);
  EXPECT_EQ(reader.Tag("desc"), static_cast<const Bytes&>(description));
  EXPECT_EQ(reader.Tag("cprt"), text);

  CNvxMemFile none;
  CProfileDataEntry* const entry = model.RemoveProfileDataEntry(10, 1);
  EXPECT_FALSE(format.SaveData(none, &model, 1)) << "no entry";
  model.SetProfileDataEntry(entry, 4);
  EXPECT_FALSE(format.SaveData(none, &model, 1)) << "an entry on another route";
  model.SetProfileDataEntry(entry, 1);
  entry->GetBuffer(200)[0] = 0;
  std::fill_n(entry->GetRefBuffer(), 200, std::uint8_t{0});
  const Bytes before = ReadBytes(folder.File("new.icc"));
  EXPECT_FALSE(format.SaveData(folder.WideFile("new.icc").c_str(), &model, 1)) << "no ICC profile";
  EXPECT_EQ(ReadBytes(folder.File("new.icc")), before);
  EXPECT_EQ(none.Buffer, nullptr);
}

TEST(ProfileFileIcc, EveryBrokenFileGetsTheMessage) {
  const TempFolder folder;
  const Bytes good = IccWithTags({"desc", "cprt"});
  std::vector<Bytes> files;
  for (std::size_t size = 0; size <= 200; ++size) files.push_back(Bytes(size, 0));
  for (std::size_t size = 0; size < good.size(); ++size) {
    files.push_back(First(good, size));
  }
  files.push_back(Patched(good, 128, 0xFFFFFFFF));
  files.push_back(Patched(good, 136, 0xFFFFFFFF));
  files.push_back(Patched(good, 144, LoadBig<std::uint32_t>(good.data() + 132)));
  for (const char* const name : {"bad.icc", "bad"}) {
    const std::u16string path = folder.WideFile(name);
    for (const Bytes& file : files) {
      WriteBytes(folder.File(name), file);
      CProfileAccess access;
      CError error;
      ASSERT_FALSE(access.Init(path.c_str(), &error)) << file.size();
      ASSERT_EQ(std::u16string(error.GetErrorCommentW()), u"Profile: File Format Error (file name:" + path + u")");
      ASSERT_EQ(access.GetProfileData(), nullptr);
    }
  }
  std::filesystem::create_directory(folder.File("folder.icc"));
  CProfileAccess access;
  CError error;
  EXPECT_FALSE(access.Init(folder.WideFile("folder.icc").c_str(), &error));
  // The superuser reads it all the same.
  std::filesystem::permissions(folder.File("bad"), std::filesystem::perms::none);
  const bool readable = std::ifstream(folder.File("bad")).is_open();
  EXPECT_TRUE(readable || !access.Init(folder.WideFile("bad").c_str(), &error));
}

TEST(ProfileFileIcc, RealProfilesGoThroughLoadAndSave) {
  for (const std::string& path : RealProfiles()) {
    CProfileAccess access;
    CError error;
    ASSERT_TRUE(access.Init(platform::Utf8ToWide(path).c_str(), &error)) << path;
    CProfileDataEntry* const entry = access.GetProfileData()->GetProfileDataEntry(1, 10);
    EXPECT_EQ(Bytes(entry->GetRefBuffer(), entry->GetRefBuffer() + entry->GetSize()), ReadBytes(path));
    CNvxMemFile saved;
    ASSERT_TRUE(CProfileFileICC().SaveData(saved, access.GetProfileData(), 1)) << path;
    CICCProfile before, after;
    ASSERT_TRUE(before.OpenPath(platform::Utf8ToWide(path).c_str(), false));
    ASSERT_TRUE(after.OpenBuffer(saved.Buffer, saved.Position, false)) << path;
    EXPECT_EQ(after.GetProfileSize(), saved.Position);
    EXPECT_EQ(after.IsTagPresent("desc"), before.IsTagPresent("desc"));
    std::free(saved.Buffer);
  }
}

}  // namespace
}  // namespace nvx::test
