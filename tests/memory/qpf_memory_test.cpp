// What a profile of the current generation takes of the heap.
#include "memory/heap.h"
#include "support/files.h"
#include "support/sample_profile.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace heap = nvx::test::heap;

TEST(QpfMemory, LoadAndSaveOfAWholeProfile) {
  const nvx::test::TempFolder folder;
  const std::u16string path = folder.WideFile("a.icc");
  {
    CProfileData data;
    nvx::test::FillSampleProfile(data);
    ASSERT_TRUE(CProfileFileQPFv4().SaveData(path.c_str(), &data, nvx::kSaveReplaceProfile));
  }
  const std::size_t size = std::filesystem::file_size(folder.File("a.icc"));
  const auto peakOf = [](auto run) {
    const std::size_t before = heap::InUse();
    heap::ResetPeak();
    run();
    return heap::Peak() - before;
  };
  CProfileAccess access;
  CError error;
  // The working copy, the buffers and the payloads.
  EXPECT_LE(peakOf([&] { ASSERT_TRUE(access.Init(path.c_str(), &error)); }), 3 * size + size / 10);
  // The tags and the image.
  EXPECT_LE(
      peakOf([&] {
        ASSERT_TRUE(CProfileFileQPFv4().SaveData(path.c_str(), access.GetProfileData(), nvx::kSaveReplaceProfile));
      }),
      2 * size + size / 10);
}

}  // namespace
