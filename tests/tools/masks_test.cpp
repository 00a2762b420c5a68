// Print masks through the tool: as JSON, and as the printer's buffer.
#include "support/byte_builder.h"
#include "support/files.h"
#include "tools/profile_maker.h"

#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_file.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

namespace {

using namespace nvx::test;

// Two blocks; and one record with a block of 5 bytes that uses one pattern of 3.
void WriteMasks(const std::u16string& path) {
  auto* const blocks = new CMaskDownLoadEntry;
  blocks->Initialize(2);
  blocks->SetWeftDataParameter(0, 4);
  blocks->SetWeftDataParameter(1, 6);
  blocks->GetWeftData(4)->Values[1] = 0xFFFFFFFF;
  std::copy_n("\1\2\3\4text", 8, blocks->GetWeftData(6)->Bytes);
  blocks->GetWeftHeader()->Reserved[0] = 7;

  auto* const patterns = new CMaskDownloadIncludePatternEntry;
  CMaskParameterDataEntry* const record = CMaskParameterDataEntry::CreateEntry();
  record->SetPass(4);
  record->SetSpecialColorsetCode(2);
  record->SetPrintMethod(200);
  for (const std::uint32_t color : {9u, 5u}) record->AddLayerColor(color);
  record->AddUsePatternID(3);
  record->SetParamDataBuffer(reinterpret_cast<const std::uint8_t*>("block"), 5);
  patterns->GetMaskParameterData()->AddTail(record);
  CMaskPatternDataEntry* const pattern = CMaskPatternDataEntry::CreateEntry();
  pattern->SetMaskPatternID(3);
  pattern->SetMaskPatternBuffer(reinterpret_cast<const std::uint8_t*>("abc"), 3);
  patterns->GetMaskPatternData()->Add(pattern);

  CProfileData data;
  for (CProfileDataEntry* const entry :
       {static_cast<CProfileDataEntry*>(blocks), static_cast<CProfileDataEntry*>(patterns)}) {
    ASSERT_TRUE(entry->DataToBuffer());
    data.SetProfileDataEntry(entry, nvx::kRouteMaskDownload);
  }
  ASSERT_TRUE(CProfileFileQCT().SaveData(path.c_str(), &data, nvx::kRouteMaskDownload));
}

TEST(ToolMasks, PacksForThePrinterAndTellsWhyNot) {
  const TempFolder folder;
  const std::string file = folder.File("masks.qct");
  const std::string out = folder.File("packed");
  WriteMasks(folder.WideFile("masks.qct"));
  const auto packed = RunTool({"masks", file, "--pack", "4,2,1,9,5", out});
  EXPECT_EQ(packed.status, 0);
  EXPECT_EQ(packed.err, "") << "the order of layer colours means nothing";
  EXPECT_EQ(ReadBytes(out), ByteBuilder().U16(5).U8(1).U16(3).U32(3).Text("blockabc").Take());

  // The table counts layer colours and does not compare them.
  const auto others = RunTool({"masks", file, "--pack", "4,2,1,5,8", out});
  EXPECT_EQ(others.status, 0);
  EXPECT_THAT(others.err, testing::HasSubstr("warning: the mask is that of the layer colours 5,9"));
  EXPECT_THAT(RunTool({"masks", file, "--pack", "4,2,200", out}), Fails("Profile:There is no specified condition."));
  EXPECT_THAT(RunTool({"masks", file, "--pack", "4,2", out}), IsWrongUsage());
  EXPECT_THAT(RunTool({"masks", file, "--pack", "4,2,200,", out}), IsWrongUsage());

  const auto document = ToolJson({"masks", file, "--json"});
  EXPECT_EQ(document["maskDownload"]["weftData"][0]["values"][1], 0xFFFFFFFF);
  EXPECT_EQ(document["maskPatterns"]["maskParameters"][0]["layerColors"], (nlohmann::json{5, 9}));
}

}  // namespace
