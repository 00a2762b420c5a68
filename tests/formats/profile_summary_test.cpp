// Headers alone against whole loads, and headers that lie.
#include "support/environment.h"
#include "support/files.h"
#include "support/legacy_profile.h"
#include "support/qpf_builder.h"
#include "support/random_model.h"
#include "support/record_text.h"

#include <nvxprofile/calibration.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_file_qpf.h>
#include <nvxprofile/profile_summary.h>

#include <gtest/gtest.h>

#include <random>

namespace nvx::test {
namespace {

class Summary : public ::testing::Test {
 protected:
  bool Read(const Bytes& bytes, ProfileSummary& summary, Diagnosis* diagnosis = nullptr) {
    WriteBytes(folder_.File("p"), bytes);
    return SummarizeProfile(folder_.WideFile("p").c_str(), summary, diagnosis);
  }

  TempFolder folder_;
};

// Without what a load takes from the entries.
std::string HeadersOf(_tagDeviceProfileInfo info) {
  info.HasMaskDownload = info.HasOutputBlock = info.HasLargeParameter = info.HasSpecialColor = false;
  info.SeparateWayCode = info.WaveFormParam = info.OutputFourthValue = info.OutputCodeA = info.OutputCodeB = 0;
  info.OutputText[0] = 0;
  return TextOf(info);
}

TEST_F(Summary, IsThatOfALoad) {
  std::mt19937 random(11);
  const std::u16string path = folder_.WideFile("p.icc");
  int calibrated = 0;
  for (int round = 0; round < 40; ++round) {
    CProfileData data;
    FillRandomProfile(data, random);
    ASSERT_TRUE(CProfileFileQPFv3().SaveData(path.c_str(), &data, kSaveCalibration));
    CProfileAccess access;
    CError error;
    ASSERT_TRUE(access.Init(path.c_str(), &error));
    ProfileSummary summary;
    ASSERT_TRUE(SummarizeProfile(path.c_str(), summary));
    EXPECT_EQ(summary.format, access.GetProfileLoadFormat());
    EXPECT_EQ(HeadersOf(*summary.headers.GetProfileInfo()), HeadersOf(*access.GetProfileInfo()));
    std::int32_t code = -1;
    access.GetNewestCalibrationCode(code, &error);
    EXPECT_EQ(summary.newestCalibration ? static_cast<std::int32_t>(summary.newestCalibration->code) : -1, code);
    calibrated += summary.newestCalibration ? 1 : 0;
  }
  EXPECT_GT(calibrated, 0);
}

TEST_F(Summary, OfTextHeadedProfilesIsThatOfALoad) {
  const LegacyFolder legacy;
  ASSERT_TRUE(WriteLegacyProfile(legacy.File("p.qpf"), {6, 10}, {7}));
  CProfileAccess access;
  CError error;
  ASSERT_TRUE(access.Init(legacy.WideFile("p.qpf").c_str(), &error));
  ProfileSummary summary;
  ASSERT_TRUE(SummarizeProfile(legacy.WideFile("p.qpf").c_str(), summary));
  EXPECT_EQ(summary.format, 3);
  EXPECT_EQ(HeadersOf(*summary.headers.GetProfileInfo()), HeadersOf(*access.GetProfileInfo()));
}

// A history of a target and calibrations with these codes and times; the bodies are missing.
Bytes HistoryTag(const std::vector<std::pair<std::uint32_t, std::int64_t>>& calibrations, std::uint32_t count) {
  ByteBuilder tag = Opening();
  tag.Text("ILAC").U32(20, 0x00010000, count, 9);
  tag.Text("HEAC").U32(88, 4, 21, 9, 1, 0).Zero(60);
  for (const auto& [code, time] : calibrations) {
    tag.Text("HEAC").U32(88, 4, 20, 10, 1, code, 5);
    tag.U64(static_cast<std::uint64_t>(time)).Wide(u"Monday", 20).Zero(8);
  }
  for (std::size_t i = 0; i <= calibrations.size(); ++i) tag.Text("DEAC");
  return Padded(tag);
}

Bytes ProfileWith(const Bytes& history) {
  using namespace nvx::test;
  return IccFile({{"NVX1", EntryTag({Placeholder()})}, {"NVX2", MediaTag({{9, u"Glossy"}})}, {"NVX4", history}});
}

TEST_F(Summary, TakesTheCalibrationThatAPrintJobTakes) {
  {
    ProfileSummary summary;
    ASSERT_TRUE(Read(ProfileWith(HistoryTag({{1, 50}, {2, 70}, {3, 70}, {4, 0}, {5, -3}}, 6)), summary));
    EXPECT_EQ(summary.calibrationCount, 5u);
    ASSERT_TRUE(summary.newestCalibration);
    EXPECT_EQ(summary.newestCalibration->code, 2u) << "the first of those with the greatest time";
    EXPECT_EQ(summary.newestCalibration->name, u"Monday");
    EXPECT_EQ(summary.newestCalibration->value, 5);
  }
  {
    // The second header of one code fills the first one's calibration anew.
    ProfileSummary summary;
    ASSERT_TRUE(Read(ProfileWith(HistoryTag({{1, 90}, {2, 70}, {1, 10}}, 4)), summary));
    EXPECT_EQ(summary.calibrationCount, 2u);
    EXPECT_EQ(summary.newestCalibration->code, 2u);
  }
  // More headers than one block of them, and a count that the tag does not hold.
  std::vector<std::pair<std::uint32_t, std::int64_t>> many;
  for (std::uint32_t i = 1; i <= 200; ++i) many.emplace_back(i, 1000 + i % 150);
  ProfileSummary summary;
  ASSERT_TRUE(Read(ProfileWith(HistoryTag(many, 201)), summary));
  EXPECT_EQ(summary.calibrationCount, 200u);
  EXPECT_EQ(summary.newestCalibration->code, 149u);
  for (const std::uint32_t lie : {202u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    ProfileSummary none;
    EXPECT_TRUE(Read(ProfileWith(HistoryTag(many, lie)), none));
    EXPECT_EQ(none.calibrationCount, 0u);
  }
}

TEST_F(Summary, RefusesHeadersThatLieAndNamesThem) {
  using namespace nvx::test;
  const Bytes entries = EntryTag({Placeholder()});
  const Bytes media = MediaTag({{9, u"Glossy"}});
  Bytes lying = media;
  lying[12] = 200;
  struct Case {
    Bytes bytes;
    const char* rule;
  };
  const std::vector<Case> cases{
      {{}, "ICC profile: ends inside the header or the tag count"},
      {IccFile({{"NVX1", First(entries, 396)}, {"NVX2", media}}), "header block: cut short"},
      {IccFile({{"NVX1", entries}}), "private tag: missing"},
      {IccFile({{"NVX1", entries}, {"NVX2", lying}}), "media names: count beyond the end"},
      {IccFile({{"NVX1", entries}, {"NVX2", First(media, 8)}}), "media names: cut short"},
      {ByteBuilder().U8(0x20).Text("TCQ").U32(32, 7).Zero(20), "container header: wrong version"},
  };
  for (const auto& [bytes, rule] : cases) {
    ProfileSummary summary;
    Diagnosis diagnosis;
    EXPECT_FALSE(Read(bytes, summary, &diagnosis)) << rule;
    ASSERT_TRUE(diagnosis.HasErrors()) << rule;
    EXPECT_EQ(diagnosis.Findings().back().rule, rule);
  }
  ProfileSummary summary;
  EXPECT_FALSE(SummarizeProfile(u"/no/such/file", summary));
  EXPECT_FALSE(SummarizeProfile(nullptr, summary));
}

// Every byte of the file is broken once, and it is cut at many lengths: nothing but a summary or a refusal.
TEST_F(Summary, SurvivesBrokenHeaders) {
  const Bytes whole = ProfileWith(HistoryTag({{1, 50}}, 2));
  for (std::size_t i = 0; i < whole.size(); ++i) {
    Bytes broken = whole;
    broken[i] ^= 0xFF;
    ProfileSummary one;
    Diagnosis diagnosis;
    EXPECT_TRUE(Read(broken, one, &diagnosis) || diagnosis.HasErrors());
    if (i % 7 != 0) continue;
    ProfileSummary two;
    EXPECT_FALSE(Read(First(whole, i), two)) << i;
  }
}

}  // namespace
}  // namespace nvx::test
