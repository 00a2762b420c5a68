#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/mask_download.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace nvx::test {
namespace {

ByteBuilder Body(const std::vector<std::uint32_t>& values) {
  ByteBuilder bytes;
  bytes.Text("DFEW");
  for (const std::uint32_t value : values) bytes.U32(value);
  return bytes;
}

TEST(MaskDownload, TypeDecidesSizeAndVersion) {
  CMaskDownLoadEntry entry;
  EXPECT_EQ(entry.GetWeftData(3), nullptr);
  EXPECT_EQ(entry.GetWeftUsedType(), nullptr);
  entry.SetWeftDataParameter(0, 3);
  EXPECT_EQ(entry.GetWeftData(3), nullptr) << "no block to give a type";

  struct {
    std::uint32_t values, bytes, major, minor;
  } const kinds[] = {{16, 0, 1, 0}, {1, 0, 1, 0}, {1, 0, 1, 0}, {3, 0, 1, 1}, {0, 2, 2, 0}, {0, 164, 3, 0}};
  entry.Initialize();
  for (std::uint32_t type = 1; type <= 6; ++type) {
    entry.SetWeftDataParameter(0, type);
    const tagWeftDatas* const block = entry.GetWeftData(type);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->ValueCount, kinds[type - 1].values);
    EXPECT_EQ(block->ByteCount, kinds[type - 1].bytes);
    EXPECT_EQ(block->Values == nullptr, block->ValueCount == 0);
    EXPECT_EQ(block->Bytes == nullptr, block->ByteCount == 0);
    EXPECT_EQ(entry.GetWeftHeader()->VersionMajor, kinds[type - 1].major);
    EXPECT_EQ(entry.GetWeftHeader()->VersionMinor, kinds[type - 1].minor);
  }
  entry.SetWeftDataParameter(0, 7);
  EXPECT_NE(entry.GetWeftData(6), nullptr) << "an unknown type changes nothing";
  entry.SetWeftDataParameter(5, 0);
  ASSERT_NE(entry.GetWeftData(3), nullptr);
  EXPECT_EQ(entry.GetWeftData(3)->Values[0], 0u);
  EXPECT_EQ(entry.GetWeftHeader()->VersionMajor, 1u);
}

TEST(MaskDownload, SupportsVersionsUpTo4) {
  CMaskDownLoadEntry entry;
  for (const tagWeftHeader& header : {tagWeftHeader{3, 9}, {4, 0}, {4, 1}, {5, 0}}) {
    EXPECT_EQ(entry.IsSuportVersion(&header), header.VersionMajor * 10 + header.VersionMinor <= 40);
  }
  EXPECT_FALSE(entry.IsSuportVersion(nullptr));
}

TEST(MaskDownload, OutputBlockIsSavedInTwoHundredTwelveBytes) {
  CMaskDownLoadEntry entry;
  entry.Initialize();
  entry.SetWeftDataParameter(0, 6);
  std::fill_n(entry.GetWeftData(6)->Bytes, 164, std::uint8_t{0xAB});
  entry.GetWeftHeader()->Reserved[1] = 5;
  ASSERT_TRUE(entry.DataToBuffer());
  const Bytes expected =
      ByteBuilder().U32(3, 0, 1, 0, 5).Append(MaskBlockHeader(6, 168, 0, 164)).Text("DFEW").Fill(0xAB, 164);
  EXPECT_EQ(expected.size(), 212u);
  EXPECT_EQ(BytesOf(entry), expected);
  EXPECT_EQ(*entry.GetWeftTotalSize(), 212u);
}

TEST(MaskDownload, StoredCountsAndVersionsDoNotMatter) {
  CMaskDownLoadEntry entry;
  ASSERT_TRUE(Parse(entry, MaskStreamHeader(9, 9, 1)
                               .Append(MaskBlockHeader(4, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF))
                               .Append(Body({1, 2, 3}))));
  EXPECT_EQ(entry.GetWeftHeader()->VersionMajor, 1u);
  EXPECT_EQ(entry.GetWeftHeader()->VersionMinor, 1u);
  EXPECT_EQ(entry.GetWeftData(4)->ValueCount, 3u);
  EXPECT_EQ(entry.GetWeftData(4)->Values[2], 3u);

  ASSERT_TRUE(Parse(entry, MaskStreamHeader(4, 1, 0)));
  EXPECT_EQ(entry.GetWeftHeader()->VersionMajor, 4u);
  EXPECT_EQ(entry.GetWeftData(4), nullptr) << "what the load before left is gone";
  EXPECT_EQ(entry.GetWeftUsedType(), nullptr);
  ASSERT_TRUE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), MaskStreamHeader(4, 1, 0).Take());

  ASSERT_TRUE(Parse(entry, MaskStreamHeader(1, 0, 1).Append(MaskBlockHeader(0, 8, 1, 0)).Text("DFEW").U32(6)));
  ASSERT_NE(entry.GetWeftData(3), nullptr) << "type 0 stands for 3";
  EXPECT_EQ(entry.GetWeftData(3)->Values[0], 6u);
}

TEST(MaskDownload, KeepsTheBlocksBeforeAFault) {
  const Bytes whole = MaskDownloadForm();
  const auto load = [](CMaskDownLoadEntry& entry, Bytes bytes, std::size_t offset) {
    bytes[offset] = 'X';
    EXPECT_FALSE(Parse(entry, bytes));
    return entry.GetWeftBlocks().size();
  };
  CMaskDownLoadEntry entry;
  EXPECT_FALSE(Parse(entry, Bytes(whole.begin(), whole.end() - 1)));
  EXPECT_EQ(entry.GetWeftBlocks().size(), 2u) << "the last body is cut short";
  EXPECT_FALSE(Parse(entry, Bytes(whole.begin(), whole.begin() + 92 + 17)));
  EXPECT_EQ(entry.GetWeftBlocks().size(), 1u);
  ASSERT_TRUE(Parse(entry, whole));
  EXPECT_EQ(*entry.GetWeftUsedType(), 4u);
  EXPECT_EQ(*entry.GetWeftDataCount(), 3u);
  EXPECT_EQ(load(entry, whole, 20 + 24), 3u) << "a wrong block header leaves what stood there";
  EXPECT_EQ(load(entry, whole, 92 + 16), 0u) << "a wrong body magic puts all in doubt";
}

TEST(MaskDownload, DoesNotSaveWhatCannotBeReadBack) {
  CMaskDownLoadEntry entry;
  ASSERT_TRUE(Parse(entry, MaskDownloadForm()));
  *entry.GetWeftDataCount() = 4;
  EXPECT_FALSE(entry.DataToBuffer());
  *entry.GetWeftDataCount() = 3;
  entry.GetWeftData(6)->ByteCount = 165;
  EXPECT_FALSE(entry.DataToBuffer());
  entry.GetWeftData(6)->ByteCount = 164;
  entry.GetWeftData(3)->BlockType = 7;
  EXPECT_FALSE(entry.DataToBuffer());
  EXPECT_EQ(BytesOf(entry), MaskDownloadForm());
  entry.Initialize();
  EXPECT_FALSE(entry.DataToBuffer()) << "a block without a type";
}

TEST(MaskDownload, ImportsWhatBothHave) {
  CMaskDownLoadEntry source, target;
  ASSERT_TRUE(Parse(source, MaskDownloadForm(5, 6)));
  source.GetWeftData(3)->Values[0] = 1;  // the buffer counts
  ASSERT_TRUE(Parse(target, MaskStreamHeader(3, 0, 2)
                                .Append(MaskBlockHeader(3, 8, 1, 0))
                                .Append(MaskBlockHeader(6, 168, 0, 164))
                                .Append(Body({0}))
                                .Append(Body({}))
                                .Zero(164)));
  EXPECT_TRUE(target.DoImport(&source));
  EXPECT_EQ(target.GetWeftData(3)->Values[0], 5u);
  EXPECT_EQ(target.GetWeftData(6)->Bytes[0], 6);
  EXPECT_EQ(target.GetWeftData(6)->Bytes[163], 6);
  EXPECT_EQ(target.GetWeftData(4), nullptr);

  CMaskDownLoadEntry only3, only4;
  only3.Initialize();
  only3.SetWeftDataParameter(0, 3);
  only4.Initialize();
  only4.SetWeftDataParameter(0, 4);
  only4.GetWeftData(4)->Values[1] = 8;
  EXPECT_TRUE(only4.DoImport(&only3));
  EXPECT_EQ(only4.GetWeftData(4)->Values[1], 8u);
  EXPECT_FALSE(target.DoImport(nullptr));
  CProfileDataEntry other;
  EXPECT_FALSE(target.DoImport(&other));
}

TEST(MaskDownload, PatternsNestTheirFormsInOneBlock) {
  CMaskDownloadIncludePatternEntry entry;
  EXPECT_EQ(entry.GetFormatData(), nullptr);
  ASSERT_TRUE(entry.DataToBuffer());
  ByteBuilder empty = MaskStreamHeader(2, 0, 1).Append(MaskBlockHeader(5, 84, 0, 2)).Append(Body({}));
  for (const char* const magic : {"HPPM", "HTPM"}) empty.Text(magic).U32(40, 1).Zero(28);
  EXPECT_EQ(BytesOf(entry), empty.Take());
  EXPECT_EQ(*entry.GetWeftTotalSize(), 128u);

  ASSERT_TRUE(Parse(entry, MaskPatternsForm()));
  EXPECT_EQ(*entry.GetWeftUsedType(), 5u);
  EXPECT_EQ(entry.GetWeftData(5), nullptr);
  EXPECT_FALSE(entry.DoImport(&entry));
  EXPECT_FALSE(Parse(entry, MaskStreamHeader(2, 0, 2)
                                .Append(MaskBlockHeader(5, 84, 0, 2))
                                .Append(MaskBlockHeader(5, 84, 0, 2))
                                .Append(Bytes(empty.Take().begin() + 44, empty.Take().end()))));
}

}  // namespace
}  // namespace nvx::test
