// Streams and saves that run out of room.
#include "core/replacing_file.h"
#include "support/environment.h"
#include "support/files.h"

#include <nvxprofile/file.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace nvx::test {
namespace {

TEST(File, FlushTellsThatADeviceIsFull) {
  CNvxFile file;
  ASSERT_TRUE(file.Open(u"/dev/full", kGenericWrite, 0, kOpenExisting));
  EXPECT_EQ(file.Write("abcd", 4), 4u);
  EXPECT_FALSE(file.Flush());
  EXPECT_EQ(file.Write("abcd", 4), 0u);
}

TEST(ReplacingFile, AFullDiskLeavesTheOldFileAndNothingElse) {
  const TempFolder folder;
  const Bytes old(50, 3);
  WriteBytes(folder.File("p.icc"), old);
  const auto writes = [](std::uint32_t pieces, std::uint32_t size) {
    return [=](CNvxFile& file) {
      const Bytes bytes(size, 7);
      for (std::uint32_t i = 0; i < pieces; ++i) {
        if (file.Write(bytes.data(), size) != size) return false;
      }
      return true;
    };
  };
  for (const std::size_t limit :
       {std::size_t{0}, std::size_t{1}, std::size_t{32767}, std::size_t{32768}, std::size_t{99'999}}) {
    {
      const ScopedFileSizeLimit full(limit);
      EXPECT_FALSE(SaveByReplacing(folder.WideFile("p.icc").c_str(), writes(100, 1000)));
      EXPECT_FALSE(SaveByReplacing(folder.WideFile("p.icc").c_str(), writes(1, 100'000)));
    }
    EXPECT_EQ(ReadBytes(folder.File("p.icc")), old);
    EXPECT_EQ(folder.FileCount(), 1u);
  }
  EXPECT_FALSE(SaveByReplacing(u"/dev/full", writes(3, 100)));
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

}  // namespace
}  // namespace nvx::test
