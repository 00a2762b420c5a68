#include "support/entry_bytes.h"

#include <nvxprofile/mask_download.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace nvx::test {
namespace {

// A loaded profile with the entries that a test puts into it.
class MaskAccess : public testing::Test {
 protected:
  void Load(CProfileDataEntry&& entry) { ASSERT_TRUE(InitFromEntry(access_, entry, kRouteMaskDownload)); }

  // The comment that a failed call left, which is then reset.
  std::u16string Comment() {
    const std::u16string comment = error_.GetErrorCommentW();
    ExpectError(error_, comment.empty() ? 0 : std::uint32_t{kReasonNotFound}, comment);
    error_.Reset();
    return comment;
  }

  std::uint32_t PackedSize(std::uint32_t pass, std::uint32_t method, std::uint32_t colors) {
    return access_.GetMaskParameterAndPatternBuffer(nullptr, pass, 2, method, colors, nullptr, &error_);
  }

  CProfileAccess access_;
  CError error_;
};

TEST_F(MaskAccess, NothingIsPackedOfWhatIsNotThere) {
  EXPECT_EQ(PackedSize(1, 2, 3), 0u);
  EXPECT_EQ(Comment(), u"");
  Load(CMaskDownLoadEntry());
  EXPECT_EQ(PackedSize(1, 2, 3), 0u);
  EXPECT_EQ(Comment(), u"Profile:There is no specified parameter.");
  Load(CMaskDownloadIncludePatternEntry());
  EXPECT_EQ(PackedSize(1, 2, 3), 0u);
  EXPECT_EQ(Comment(), u"Profile:There is no specified condition.");
}

TEST_F(MaskAccess, VersionAboveFourIsNotSupported) {
  CMaskDownLoadEntry entry;
  entry.GetWeftHeader()->VersionMajor = 4;
  entry.GetWeftHeader()->VersionMinor = 1;
  Load(std::move(entry));
  EXPECT_FALSE(access_.IsSupportWeftVersion(&error_));
  EXPECT_EQ(Comment(), u"");
}

TEST_F(MaskAccess, PacksBlockAndPatternsInTheOrderOfTheRecord) {
  CMaskDownloadIncludePatternEntry entry;
  const auto addRecord = [&](std::uint32_t pass, std::uint32_t method, std::vector<std::uint32_t> ids) {
    CMaskParameterDataEntry* const record = CMaskParameterDataEntry::CreateEntry();
    record->SetPass(pass);
    record->SetSpecialColorsetCode(2);
    record->SetPrintMethod(method);
    for (const std::uint32_t color : {1u, 2u, 3u}) record->AddLayerColor(color);
    for (const std::uint32_t id : ids) record->AddUsePatternID(id);
    const Bytes block = ByteBuilder().Text("block");
    record->SetParamDataBuffer(block.data(), 5);
    entry.GetMaskParameterData()->AddTail(record);
  };
  const auto addPattern = [&](std::uint32_t id, std::uint32_t size) {
    CMaskPatternDataEntry* const pattern = CMaskPatternDataEntry::CreateEntry();
    pattern->SetMaskPatternID(id);
    pattern->SetMaskPatternBuffer(Bytes(size, static_cast<std::uint8_t>(id)).data(), size);
    entry.GetMaskPatternData()->Add(pattern);
  };
  addRecord(4, 300, {0x10004, 3});
  addRecord(4, 7, {});
  addRecord(8, 300, {3, 5});
  addRecord(16, 300, {3, 3});
  addPattern(3, 10);
  addPattern(0x10004, 20);
  Load(std::move(entry));

  ASSERT_EQ(PackedSize(4, 6, 3), 50u) << "by way of print method 300";
  Bytes buffer(51, 0xEE);
  std::uint32_t colors[] = {3, 2, 1};
  EXPECT_EQ(access_.GetMaskParameterAndPatternBuffer(buffer.data(), 4, 2, 300, 3, colors, &error_), 50u);
  EXPECT_EQ(
      buffer,
      ByteBuilder().U16(5).U8(2).U16(4).U32(20).U16(3).U32(10).Text("block").Fill(4, 20).Fill(3, 10).U8(0xEE).Take());

  buffer.assign(9, 0xEE);
  EXPECT_EQ(access_.GetMaskParameterAndPatternBuffer(buffer.data(), 4, 2, 7, 3, nullptr, &error_), 8u);
  EXPECT_EQ(buffer, ByteBuilder().U16(5).U8(0).Text("block").U8(0xEE).Take());

  EXPECT_EQ(PackedSize(16, 300, 3), 3u + 5 + 2 * 16) << "a pattern used twice stands twice";
  EXPECT_EQ(PackedSize(8, 300, 3), 0u) << "pattern 5 is missing";
  EXPECT_EQ(access_.GetMaskParameterAndPatternBuffer(buffer.data(), 8, 2, 300, 3, nullptr, &error_), 0u);
  EXPECT_EQ(buffer[0], 5u);
  EXPECT_EQ(Comment(), u"");
  EXPECT_EQ(PackedSize(4, 300, 2), 0u);
  EXPECT_EQ(Comment(), u"Profile:There is no specified condition.");
}

TEST_F(MaskAccess, LoadTakesTheOutputInformation) {
  const auto load = [&](const Bytes& block) {
    CMaskDownLoadEntry entry;
    entry.Initialize();
    entry.SetWeftDataParameter(0, 6);
    std::copy(block.begin(), block.end(), entry.GetWeftData(6)->Bytes);
    Load(std::move(entry));
    return std::u16string(access_.GetProfileInfo()->OutputText);
  };
  EXPECT_EQ(load(ByteBuilder().U16(0xFEDC).U8(7, 8).Text(std::string(31, 'a') + "bc", 160)), std::u16string(31, u'a'));
  EXPECT_EQ(access_.GetProfileInfo()->OutputFourthValue, 0xFEDC);
  EXPECT_EQ(load(Bytes(164, 'x')), std::u16string(31, u'x'));

  Load(CMaskDownLoadEntry());
  const _tagDeviceProfileInfo& none = *access_.GetProfileInfo();
  EXPECT_EQ(none.OutputFourthValue, -1);
  EXPECT_EQ(none.OutputCodeA, 255);
  EXPECT_EQ(none.OutputCodeB, 255);
  EXPECT_EQ(none.OutputText[0], 0);
}

}  // namespace
}  // namespace nvx::test
