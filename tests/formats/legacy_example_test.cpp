#include "support/legacy_profile.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_text.h>

#include <gtest/gtest.h>

namespace {

using nvx::test::ReadBytes;
using nvx::test::ScopedVariable;

// The example of the repository comes from the writers as they are; a change of what they write shows here.
TEST(LegacyExample, IsWhatTheWritersWrite) {
  const ScopedVariable zone("TZ", "UTC");
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "951830645");
  const nvx::test::ScopedLanguage language("en_US.UTF-8");
  const std::string examples = std::string(NVXPROFILE_SOURCE_FOLDER) + "/examples/legacy/";
  const nvx::test::LegacyFolder folder;
  const std::vector<std::uint32_t> route1{1, 2, 4, 5, 6, 10, 14, 16};
  const std::vector<std::uint32_t> route2{2, 6, 7, 10};
  CProfileData data;
  nvx::test::FillLegacyProfile(data, route1, route2);
  ASSERT_TRUE(CProfileFileQPFv2().SaveData(folder.WideFile("saved.qpf").c_str(), &data, 0));
  EXPECT_EQ(ReadBytes(folder.File("saved.qpf")), ReadBytes(examples + "glossy.qpf"));
  ASSERT_TRUE(nvx::test::WriteLegacyProfile(folder.File("stored.qpf"), route1, route2));
  EXPECT_EQ(ReadBytes(folder.File("stored.qpf")), ReadBytes(examples + "glossy.qpf"));

  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", examples);
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(nvx::platform::Utf8ToWide(examples + "glossy.qpf").c_str(), &error));
  EXPECT_EQ(access.GetProfileInfo()->PrinterComment, std::u16string(u"Test printer PX"));
}

}  // namespace
