#include "core/replacing_file.h"
#include "core/stream.h"
#include "support/files.h"

#include <nvxprofile/file.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <numeric>

namespace nvx::test {
namespace {

Bytes Ramp(std::size_t size) {
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
  return bytes;
}

TEST(File, ClosedStreamDoesNothing) {
  CNvxFile file;
  char byte = 'x';
  EXPECT_EQ(file.Read(&byte, 1), 0u);
  EXPECT_EQ(file.Write(&byte, 1), 0u);
  EXPECT_EQ(file.Seek(5, kFromBegin), 0u);
  EXPECT_EQ(file.GetLength(), 0u);
  EXPECT_EQ(reinterpret_cast<std::intptr_t>(file.GetHandle()), -1);
}

TEST(File, OpenRefusesWhatIsNoFileAndKeepsTheOldOne) {
  const TempFolder folder;
  WriteBytes(folder.File("a.bin"), Ramp(3));
  CNvxFile file;
  ASSERT_TRUE(file.Open(folder.WideFile("a.bin").c_str(), kGenericRead, kShareRead, kOpenExisting));
  for (const std::string& name : {std::string("none"), std::string(), std::string(260, 'x')}) {
    EXPECT_FALSE(file.Open(folder.WideFile(name).c_str(), kGenericRead, kShareRead, kOpenExisting)) << name;
  }
  char16_t name[256];
  file.GetFileName(name);
  EXPECT_EQ(std::u16string(name), u"a.bin");
  file.GetPathName(name);
  EXPECT_EQ(std::u16string(name), folder.WideFile("a.bin"));
  EXPECT_EQ(file.GetLength(), 3u);
  file.Close();
  file.GetPathName(name);
  EXPECT_EQ(std::u16string(name), u"");
}

// A mix of small and large transfers and seeks, against a plain array that does the same.
TEST(File, BufferedTransfersAgreeWithAnArray) {
  const TempFolder folder;
  const std::u16string path = folder.WideFile("mix.bin");
  CNvxFile file;
  ASSERT_TRUE(file.Open(path.c_str(), kGenericRead | kGenericWrite, 0, kCreateAlways));
  Bytes expected;
  std::size_t position = 0;
  std::srand(7);
  const auto random = [](std::size_t below) { return static_cast<std::size_t>(std::rand()) % below; };
  for (int step = 0; step < 3000; ++step) {
    const std::size_t count = random(10) == 0 ? random(90'000) : random(300);
    switch (random(4)) {
      case 0: {
        Bytes bytes(count, static_cast<std::uint8_t>(random(256)));
        ASSERT_EQ(file.Write(bytes.data(), static_cast<std::uint32_t>(count)), count);
        if (count != 0) expected.resize(std::max(expected.size(), position + count));
        std::copy(bytes.begin(), bytes.end(), expected.begin() + static_cast<std::ptrdiff_t>(position));
        position += count;
        break;
      }
      case 1: {
        Bytes bytes(count);
        const std::size_t there = position < expected.size() ? expected.size() - position : 0;
        const std::size_t got = file.Read(bytes.data(), static_cast<std::uint32_t>(count));
        ASSERT_EQ(got, std::min(there, count));
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(got),
                               expected.begin() + static_cast<std::ptrdiff_t>(position)));
        position += got;
        break;
      }
      case 2: {
        position = random(expected.size() + 1);
        ASSERT_EQ(file.Seek(static_cast<std::uint32_t>(position), kFromBegin), position);
        break;
      }
      default: {
        const std::size_t back = std::min(position, random(200));
        position -= back;
        ASSERT_EQ(file.Seek(static_cast<std::uint32_t>(-static_cast<std::int64_t>(back)), kFromPosition), position);
        ASSERT_EQ(file.GetLength(), expected.size());
      }
    }
    if (expected.size() > 1'000'000) break;
  }
  EXPECT_TRUE(file.Flush());
  file.Close();
  EXPECT_EQ(ReadBytes(folder.File("mix.bin")), expected);
}

TEST(File, AWriteGoesToWhereTheReadsEnded) {
  const TempFolder folder;
  for (std::uint32_t count = 0; count <= 4; ++count) {
    WriteBytes(folder.File("a.bin"), Ramp(4));
    CNvxFile file;
    ASSERT_TRUE(file.Open(folder.WideFile("a.bin").c_str(), kGenericRead | kGenericWrite, 0, kOpenExisting));
    std::uint8_t bytes[4];
    EXPECT_EQ(file.Read(bytes, count), count);
    EXPECT_EQ(file.Write("x", 1), 1u);
    file.Close();
    Bytes expected = Ramp(4);
    expected.resize(std::max<std::size_t>(4, count + 1));
    expected[count] = 'x';
    EXPECT_EQ(ReadBytes(folder.File("a.bin")), expected) << count;
  }
}

TEST(File, SeekFromEndGoesForwardsAndStopsAtTheStart) {
  const TempFolder folder;
  WriteBytes(folder.File("a.bin"), Ramp(10));
  CNvxFile file;
  ASSERT_TRUE(file.Open(folder.WideFile("a.bin").c_str(), kGenericRead, 1, kOpenExisting));
  EXPECT_EQ(file.SeekToEnd(), 10u);
  EXPECT_EQ(file.Seek(static_cast<std::uint32_t>(-4), kFromEnd), 6u);
  EXPECT_EQ(file.Seek(2, kFromEnd), 12u);
  EXPECT_EQ(file.Seek(static_cast<std::uint32_t>(-20), kFromPosition), 12u);
  std::uint8_t byte = 0;
  EXPECT_EQ(file.Read(&byte, 1), 0u);
  EXPECT_EQ(file.SeekToBegin(), 0u);
  EXPECT_EQ(file.Read(&byte, 1), 1u);
}

TEST(MemoryFile, GrowsInSteps) {
  CNvxMemFile file;
  char bytes[1025] = {};
  EXPECT_EQ(file.Read(bytes, 4), 0u);
  EXPECT_EQ(file.GetLength(), 0u);
  EXPECT_EQ(file.Write("0123456789", 10), 10u);
  EXPECT_EQ(file.GetLength(), 1024u);
  EXPECT_EQ(file.GetPosition(), 10u);
  EXPECT_EQ(file.Buffer[10], 0u);
  EXPECT_EQ(file.Write(bytes, 1014), 1014u);
  EXPECT_EQ(file.GetLength(), 1024u);
  EXPECT_EQ(file.Write(bytes, 1), 1u);
  EXPECT_EQ(file.GetLength(), 2048u);
  EXPECT_EQ(file.SeekToEnd(), 2048u);
  std::free(file.Buffer);

  // What a block has behind its end is cleared when it grows.
  CNvxMemFile dirty;
  dirty.Buffer = static_cast<std::uint8_t*>(std::malloc(4096));
  std::fill_n(dirty.Buffer, 4096, std::uint8_t{0xFF});
  dirty.Length = dirty.Position = 1024;
  EXPECT_EQ(dirty.Write(bytes, 1), 1u);
  EXPECT_EQ(std::count(dirty.Buffer + 1025, dirty.Buffer + 2048, 0), 1023);
  std::free(dirty.Buffer);

  CNvxMemFile large;
  EXPECT_EQ(large.Write(bytes, 1025), 1025u);
  EXPECT_EQ(large.GetLength(), 2049u);
  std::free(large.Buffer);
}

TEST(MemoryFile, SeeksInsideItsBlock) {
  Bytes block(1024);
  CNvxMemFile file(block.data(), 1024);
  EXPECT_EQ(file.Seek(5, kFromEnd), 1019u);
  EXPECT_EQ(file.Seek(2000, kFromEnd), 0u);
  EXPECT_EQ(file.Seek(2000, kFromBegin), 1024u);
  EXPECT_EQ(file.Seek(static_cast<std::uint32_t>(-24), kFromPosition), 1000u);
  EXPECT_EQ(file.Seek(static_cast<std::uint32_t>(-1001), kFromPosition), 1024u);
  EXPECT_EQ(file.Seek(3, 7), 1024u);
  std::uint8_t byte = 0;
  for (const std::uint32_t beyond : {1024u, 1025u}) {
    file.Position = beyond;
    EXPECT_EQ(file.Read(&byte, 1), 0u) << "nothing stands there";
  }
  file.SeekToBegin();
  EXPECT_EQ(file.Write("ab", 2), 2u);
  EXPECT_EQ(file.Buffer, block.data());
  EXPECT_EQ(block[1], 'b');
}

TEST(Stream, ABlockIsAViewOrACopyAndNeverBeyondTheEnd) {
  const TempFolder folder;
  Bytes bytes = Ramp(100);
  WriteBytes(folder.File("a.bin"), bytes);
  CNvxMemFile memory(bytes.data(), 100);
  CNvxFile disk;
  ASSERT_TRUE(disk.Open(folder.WideFile("a.bin").c_str(), kGenericRead, 1, kOpenExisting));
  for (CNvxFile* const file : {static_cast<CNvxFile*>(&memory), &disk}) {
    file->Seek(40, kFromBegin);
    const StreamBlock block(*file, 60);
    ASSERT_TRUE(block.IsWhole());
    EXPECT_TRUE(std::equal(block.Data(), block.Data() + 60, bytes.begin() + 40));
    EXPECT_EQ(file->GetPosition(), 100u);
    file->Seek(40, kFromBegin);
    EXPECT_FALSE(StreamBlock(*file, 61).IsWhole());
    EXPECT_FALSE(Holds(*file, 0xFFFFFFFF, 292));
    EXPECT_TRUE(Holds(*file, 15, 4));
  }
}

TEST(ReplacingFile, PutsTheNewFileInPlaceOrLeavesTheOldOne) {
  const TempFolder folder;
  const std::u16string path = folder.WideFile("p.icc");
  const auto save = [&](const Bytes& bytes, bool good) {
    return SaveByReplacing(path.c_str(), [&](CNvxFile& file) {
      char16_t name[256];
      file.GetFileName(name);
      EXPECT_EQ(std::u16string(name), u"p.icc");
      return file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size())) == bytes.size() && good;
    });
  };
  EXPECT_FALSE(save(Ramp(10), false));
  EXPECT_EQ(folder.FileCount(), 0u);
  EXPECT_TRUE(save(Ramp(100'000), true));
  std::filesystem::permissions(folder.File("p.icc"), std::filesystem::perms::owner_all);
  EXPECT_FALSE(save(Ramp(7), false));
  EXPECT_EQ(ReadBytes(folder.File("p.icc")), Ramp(100'000));
  EXPECT_TRUE(save(Ramp(7), true));
  EXPECT_EQ(ReadBytes(folder.File("p.icc")), Ramp(7));
  EXPECT_EQ(std::filesystem::status(folder.File("p.icc")).permissions(), std::filesystem::perms::owner_all);
  EXPECT_EQ(folder.FileCount(), 1u);

  // A link keeps leading to the file.
  std::filesystem::create_symlink(folder.File("p.icc"), folder.File("link.icc"));
  EXPECT_TRUE(
      SaveByReplacing(folder.WideFile("link.icc").c_str(), [](CNvxFile& file) { return file.Write("xyz", 3) == 3; }));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("link.icc")));
  EXPECT_EQ(ReadBytes(folder.File("p.icc")).size(), 3u);
  EXPECT_FALSE(SaveByReplacing(folder.WideFile("no/such/folder").c_str(), [](CNvxFile&) { return true; }));
}

}  // namespace
}  // namespace nvx::test
