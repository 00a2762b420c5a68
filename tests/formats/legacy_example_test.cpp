#include "support/legacy_profile.h"

#include <nvxprofile/profile_access.h>

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
  ASSERT_TRUE(nvx::test::WriteLegacyProfile(folder.File("glossy.qpf"), {1, 2, 4, 5, 6, 10, 14, 16}, {2, 6, 7, 10}));
  EXPECT_EQ(ReadBytes(folder.File("glossy.qpf")), ReadBytes(examples + "glossy.qpf"));

  const ScopedVariable table("NVXPROFILE_PROFILE_DIR", examples);
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(nvx::platform::Utf8ToWide(examples + "glossy.qpf").c_str(), &error));
  EXPECT_EQ(access.GetProfileInfo()->PrinterComment, std::u16string(u"Test printer PX"));
}

}  // namespace
