#include "support/legacy_profile.h"

#include <gtest/gtest.h>

namespace {

using nvx::test::Bytes;
using nvx::test::ReadBytes;
using nvx::test::ScopedVariable;

// The file that benchmarks and the tests of the tool work on comes from the writers as they are; a change of what they
// write shows here.
TEST(LegacySample, IsWhatTheWritersWrite) {
  const ScopedVariable zone("TZ", "UTC");
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "951830645");
  const nvx::test::ScopedLanguage language("en_US.UTF-8");
  const std::string data = std::string(NVXPROFILE_SOURCE_FOLDER) + "/tests/data/legacy/";
  const nvx::test::LegacyFolder folder;
  ASSERT_TRUE(nvx::test::WriteLegacyProfile(folder.File("glossy.qpf"), {1, 2, 4, 5, 6, 10, 14, 16}, {2, 6, 7, 10}));
  EXPECT_EQ(ReadBytes(folder.File("glossy.qpf")), ReadBytes(data + "glossy.qpf"));
  EXPECT_EQ(ReadBytes(folder.File("QPFConvert.qpd")), ReadBytes(data + "QPFConvert.qpd"));
}

}  // namespace
