// What a profile of the current generation takes of the heap.
#include "memory/heap.h"
#include "support/files.h"
#include "support/sample_profile.h"

#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace heap = nvx::test::heap;

// Bytes that this process has read so far, from whatever file.
std::size_t BytesRead() {
  std::ifstream io("/proc/self/io");
  std::string name;
  std::size_t value = 0;
  io >> name >> value;
  return name == "rchar:" ? value : 0;
}

class QpfMemory : public testing::TestWithParam<nvx::test::SampleSize> {};

TEST_P(QpfMemory, LoadQueriesAndSaveOfAWholeProfile) {
  constexpr std::uint32_t kFlags = nvx::kSaveReplaceProfile | nvx::kSaveCalibration;
  const nvx::test::TempFolder folder;
  const std::u16string path = folder.WideFile("a.icc");
  {
    CProfileData data;
    nvx::test::FillSampleProfile(data, GetParam());
    ASSERT_TRUE(CProfileFileQPFv4().SaveData(path.c_str(), &data, kFlags));
  }
  const std::size_t size = std::filesystem::file_size(folder.File("a.icc"));
  CProfileAccess access;
  CError error;
  const std::size_t readBefore = BytesRead();
  ASSERT_TRUE(access.Init(path.c_str(), &error));
  // What /proc itself says takes some bytes as well.
  EXPECT_LE(BytesRead() - readBefore, size + 1024) << "a load reads each byte once";
  // The bytes of the file, and the payloads of curves and table.
  EXPECT_LE(heap::PeakOf([&] { ASSERT_TRUE(access.Init(path.c_str(), &error)); }), size * 8 / 5 + 256 * 1024);
  // Nothing.
  EXPECT_EQ(heap::PeakOf([&] {
              int bytes = 0;
              int type = 0;
              for (std::uint32_t ink = 0; ink < 16; ++ink) {
                EXPECT_NE(access.GetLinearization(ink, bytes, type, &error), nullptr);
                EXPECT_NE(access.GetGrayBalance(ink, bytes, type, &error), nullptr);
              }
              EXPECT_NE(access.GetIccProfile(bytes, &error), nullptr);
              EXPECT_NE(access.GetReplaceProfile(bytes, &error), nullptr);
            }),
            0u);
  // The tags and the image.
  EXPECT_LE(
      heap::PeakOf([&] { ASSERT_TRUE(CProfileFileQPFv4().SaveData(path.c_str(), access.GetProfileData(), kFlags)); }),
      2 * size + size / 10);
}

INSTANTIATE_TEST_SUITE_P(Sizes, QpfMemory,
                         testing::Values(nvx::test::SampleSize::kUsual, nvx::test::SampleSize::kLarge));

}  // namespace
