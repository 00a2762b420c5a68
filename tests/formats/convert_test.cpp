#include "support/curve_builder.h"
#include "support/entries.h"
#include "support/icc_judge.h"
#include "support/legacy_profile.h"
#include "support/record_text.h"

#include <nvxprofile/convert.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_access.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nvx::test {
namespace {

using testing::ElementsAre;

constexpr _tagDBDeviceProfileInfo kDatabase{{11, 12, 13, 14, 15}, 77};

// The entry keeps them.
std::vector<CCurveDataEntry*> CurvesOf(CProfileDataEntry* entry) {
  auto* const curves = dynamic_cast<CProfileCurveEntry*>(entry);
  if (curves == nullptr || !curves->BufferToData()) return {};
  const auto& list = curves->GetCurveData()->Curves();
  return {list.begin(), list.end()};
}

std::vector<std::uint32_t> Widened(std::uint32_t ink) {
  std::vector<std::uint32_t> samples;
  for (const std::uint8_t sample : CurveSamples(ink)) samples.push_back(257u * sample);
  return samples;
}

std::vector<std::uint32_t> Line() {
  std::vector<std::uint32_t> samples;
  for (std::uint32_t i = 0; i < 256; ++i) samples.push_back(257 * i);
  return samples;
}

// "ink/ExtendInfo" of each curve in turn, all of 16 bits.
std::string KeysOf(const std::vector<CCurveDataEntry*>& curves) {
  std::string keys;
  for (CCurveDataEntry* const curve : curves) {
    EXPECT_EQ(curve->GetDataType(), 2u);
    keys += " " + std::to_string(curve->GetInkID()) + "/" + std::to_string(curve->GetExtendInfo());
  }
  return keys;
}

class Convert : public ::testing::Test {
 protected:
  // Writes a legacy profile and loads it.
  void LoadLegacy(const std::vector<std::uint32_t>& route1, const std::vector<std::uint32_t>& route2) {
    ASSERT_TRUE(WriteLegacyProfile(folder_.File("old.qpf"), route1, route2));
    ASSERT_TRUE(converter_.ProfileLoad(folder_.WideFile("old.qpf").c_str()));
    converter_.SetupModuleVersion(u"2.1");
  }
  // Saves what was converted and loads it.
  void SaveAndLoad(CProfileAccess& access, const std::string& name = "new.icc") {
    converter_.SaveV3Profile(folder_.WideFile(name).c_str());
    CError error;
    ASSERT_TRUE(access.Init(folder_.WideFile(name).c_str(), &error));
    EXPECT_EQ(access.GetProfileLoadFormat(), 4);
  }

  ScopedLanguage language_{"ja_JP.UTF-8"};
  LegacyFolder folder_;
  CConvertV2ToV3Profile converter_;
};

TEST_F(Convert, EachEntryBecomesWhatItShall) {
  LoadLegacy({1, 2, 6, 10, 14, 16}, {7, 4, 5, 8, 9});
  EXPECT_EQ(converter_.GetProfileDataEntry_V3(6), nullptr);
  converter_.ConvertV2ToV3Profile(&kDatabase);

  const auto limit = CurvesOf(converter_.GetProfileDataEntry_V3(17));
  ASSERT_EQ(KeysOf(limit), " 1/12 2/12 1/14 2/14");
  EXPECT_EQ(SamplesOf(*limit[0]), Widened(1));
  EXPECT_EQ(SamplesOf(*limit[1]), Widened(2));
  EXPECT_EQ(limit[0]->GetMax(), 200u * 257);
  EXPECT_EQ(limit[0]->GetMin(), 257u);
  EXPECT_EQ(SamplesOf(*limit[3]), Line());
  EXPECT_EQ(limit[3]->GetMax(), 65535u);
  EXPECT_EQ(limit[3]->GetMin(), 0u);
  for (CCurveDataEntry* const curve : limit) {
    EXPECT_STREQ(curve->GetInkName(), curve->GetInkID() == 1 ? "Cyan" : "Magenta");
    EXPECT_EQ(curve->GetSlotNo(), curve->GetInkID() + 10);
    EXPECT_EQ(curve->GetDisplayRGB(), 0x00FF00FF + curve->GetInkID());
  }
  for (const std::uint32_t type : {4u, 5u}) {
    const auto widened = CurvesOf(converter_.GetProfileDataEntry_V3(type));
    ASSERT_EQ(KeysOf(widened), " 1/7 2/3");
    EXPECT_EQ(SamplesOf(*widened[1]), Widened(2));
  }
  for (const std::uint32_t type : {6u, 7u}) {
    const auto straight = CurvesOf(converter_.GetProfileDataEntry_V3(type));
    ASSERT_EQ(KeysOf(straight), " 1/7 2/3");
    EXPECT_EQ(SamplesOf(*straight[0]), Line());
  }
  for (const std::uint32_t type : {8u, 9u, 2u}) EXPECT_EQ(converter_.GetProfileDataEntry_V3(type), nullptr) << type;
  for (const std::uint32_t type : {1u, 10u, 14u}) {
    CProfileDataEntry* const from = converter_.GetProfileDataEntry_V2(type);
    CProfileDataEntry* const to = converter_.GetProfileDataEntry_V3(type);
    EXPECT_EQ(BytesOf(*from), BytesOf(*to)) << type;
    EXPECT_STREQ(from->GetLabelString(), to->GetLabelString());
  }

  CProfileAccess access;
  SaveAndLoad(access);
  // The ICC entry stands last after a save.
  EXPECT_THAT(TypesOn(*access.GetProfileData(), 4), ElementsAre(1, 17, 6, 14, 16, 7, 4, 5, 10));
  EXPECT_EQ(SamplesOf(*CurvesOf(access.GetProfileData()->GetProfileDataEntry(4, 17))[1]), Widened(2));
  for (const std::uint32_t route : {1u, 2u, 8u, 0x100u, 0x200u}) EXPECT_FALSE(access.IsSpecifiedRoute(route)) << route;
}

TEST_F(Convert, VariableLimitsCountByTheirKey) {
  LoadLegacy({3, 10}, {6});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  EXPECT_EQ(KeysOf(CurvesOf(converter_.GetProfileDataEntry_V3(17))), " 1/12 1/14");

  LoadLegacy({3, 2, 10}, {6});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  CProfileAccess access;
  SaveAndLoad(access);
  EXPECT_THAT(TypesOn(*access.GetProfileData(), 4), ElementsAre(17, 17, 6, 10))
      << "the first limit stays, on both places";
  EXPECT_EQ(KeysOf(CurvesOf(access.GetProfileData()->GetProfileDataEntry(4, 17))), " 1/12 1/14");
}

TEST_F(Convert, TheRecordGetsItsNumbersAndNames) {
  const ScopedVariable zone("TZ", "UTC");
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "1700000000");
  LoadLegacy({1, 10, 14}, {6});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  CProfileAccess access;
  SaveAndLoad(access);
  EXPECT_EQ(TextOf(*access.GetProfileInfo()),
            "FileName=new.icc ModelCode=0042 ModelSubCode=07 InternalCode=13 ScanResolution=720 FeedResolution=1080 "
            "RenderingScan=720 RenderingFeed=1080 ColorsetCode=12 InkTypeCode=5 DotType=2 InkMakerCode=3 "
            "InkVersion=2 MediaCode=000000815 MediaName=光沢ソ RevisionCode=0000 DatabaseKey=11,12,13,14,15 "
            "HalftoneCode=77 ProfileMajorVersion=3 CreateTime=yes wYear=2023 wMonth=11 wDay=14 wHour=22 wMinute=13 "
            "wSecond=20 CreateTimeValue=1700000000 UpdateTime=yes wYear=2023 wMonth=11 wDay=14 wHour=22 wMinute=13 "
            "wSecond=20 UpdateTimeValue=1700000000 LayoutNumber=3 Unused=-1,-1 OutputFourthValue=-1 OutputCodeA=255 "
            "OutputCodeB=255 Binary=yes ModelNumber=42 ModelSubNumber=7 InternalNumber=13 MediaNumber=815 "
            "DefaultMediaName=Glossy Film CreateModule=ChromaDesk.exe v2.1 MakerText=Norvex StoredRevisionCode=0000 "
            "0=yes Language=17 Name=光沢ソ 1=yes Language=9 Name=Glossy Film");
  const ScopedVariable english("LC_ALL", "en_US.UTF-8");
  CError error;
  ASSERT_TRUE(access.Init(folder_.WideFile("new.icc").c_str(), &error));
  EXPECT_EQ(access.GetProfileInfo()->MediaName, std::u16string(u"Glossy Film"));
}

TEST_F(Convert, RepeatedItSavesTheSame) {
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "1700000000");
  LoadLegacy({1, 2, 10, 14}, {6, 7});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  converter_.SaveV3Profile(folder_.WideFile("new.icc").c_str());
  const Bytes first = ReadBytes(folder_.File("new.icc"));
  EXPECT_FALSE(first.empty());
  converter_.ConvertV2ToV3Profile(&kDatabase);
  converter_.SaveV3Profile(folder_.WideFile("new.icc").c_str());
  EXPECT_EQ(ReadBytes(folder_.File("new.icc")), first);

  EXPECT_FALSE(converter_.ProfileLoad(folder_.WideFile("none").c_str()));
  EXPECT_EQ(converter_.GetProfileDataEntry_V2(1), nullptr);
  EXPECT_EQ(converter_.GetProfileDataEntry_V3(1), nullptr);
  LoadLegacy({10}, {6});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  CProfileAccess access;
  SaveAndLoad(access);
  EXPECT_THAT(TypesOn(*access.GetProfileData(), 4), ElementsAre(6, 10));
}

TEST_F(Convert, ASaveThatFailsLeavesTheTarget) {
  WriteBytes(folder_.File("new.icc"), {1, 2, 3});
  LoadLegacy({1}, {6});
  converter_.SaveV3Profile(folder_.WideFile("new.icc").c_str());
  converter_.ConvertV2ToV3Profile(&kDatabase);
  converter_.SaveV3Profile(folder_.WideFile("new.icc").c_str());
  EXPECT_EQ(ReadBytes(folder_.File("new.icc")), (Bytes{1, 2, 3})) << "there is no ICC profile";
}

// Nothing reads the view that a source of another generation does not have.
TEST_F(Convert, SourcesOfOtherGenerationsKeepTheirNames) {
  LoadLegacy({1, 2, 10, 14}, {6});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  CProfileAccess access;
  SaveAndLoad(access);
  ASSERT_TRUE(converter_.ProfileLoad(folder_.WideFile("new.icc").c_str()));
  converter_.ConvertV2ToV3Profile(&kDatabase);
  SaveAndLoad(access, "newer.icc");
  EXPECT_THAT(TypesOn(*access.GetProfileData(), 4), ElementsAre(1, 14, 6, 10))
      << "a limit of the new kind is no source";
  EXPECT_EQ(access.GetProfileInfo()->Binary.ModelNumber, 42u);
  EXPECT_EQ(access.GetProfileInfo()->Binary.MediaNumber, 815u);
  EXPECT_EQ(access.GetProfileInfo()->MediaName, std::u16string(u"光沢ソ"));

  WriteBytes(folder_.File("plain.icc"), SmallIccProfile());
  ASSERT_TRUE(converter_.ProfileLoad(folder_.WideFile("plain.icc").c_str()));
  converter_.ConvertV2ToV3Profile(&kDatabase);
  SaveAndLoad(access, "newest.icc");
  EXPECT_THAT(TypesOn(*access.GetProfileData(), 4), ElementsAre(10));
  EXPECT_EQ(access.GetProfileInfo()->Binary.MediaInfoCount, 2u);
}

TEST_F(Convert, BytesThatDoNotParseGoOver) {
  LoadLegacy({1, 10}, {6});
  SetBytes(*converter_.GetProfileDataEntry_V2(1), Bytes(5, 'x'));
  converter_.ConvertV2ToV3Profile(&kDatabase);
  CProfileDataEntry* const copy = converter_.GetProfileDataEntry_V3(1);
  EXPECT_EQ(BytesOf(*copy), Bytes(5, 'x'));
  EXPECT_STREQ(copy->GetLabelString(), "entry 1");
  EXPECT_TRUE(copy->IsComplete());
}

TEST_F(Convert, AnIccEngineOpensTheResult) {
  LoadLegacy({1, 2, 10, 14}, {6});
  converter_.ConvertV2ToV3Profile(&kDatabase);
  converter_.SaveV3Profile(folder_.WideFile("new.icc").c_str());
  const IccJudge judge(ReadBytes(folder_.File("new.icc")));
  ASSERT_TRUE(judge.Opens());
  EXPECT_THAT(judge.Tags(), testing::Contains(0x4E565831u)) << "NVX1";
  EXPECT_EQ(judge.Description(), "new.icc");
  EXPECT_EQ(judge.ColorsInSrgb(), IccJudge(SmallIccProfile()).ColorsInSrgb());
  EXPECT_TRUE(judge.ColorsInSrgb());
}

}  // namespace
}  // namespace nvx::test
