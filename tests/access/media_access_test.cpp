#include "support/entry_bytes.h"
#include "support/media_builder.h"

#include <nvxprofile/media_property.h>
#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace nvx::test {
namespace {

using Values = std::vector<std::int32_t>;

// Opens what is protected.
class Access : public CProfileAccess {
 public:
  using CProfileAccess::GetMediaPropertyData;
};

bool InitWith(CProfileAccess& access, const std::vector<MediaBlock>& blocks) {
  return InitFromEntries(access, {{16, 8, MediaForm(blocks)}});
}

void ExpectError(const CError& error, std::uint32_t reason, std::u16string_view comment) {
  EXPECT_EQ(error.GetErrorReason(), reason);
  EXPECT_EQ(error.GetSystemErrorCode(), 0u);
  EXPECT_EQ(std::u16string_view(error.GetErrorCommentW()), comment);
}

struct SingleValue {
  bool (CProfileAccess::*get)(std::int32_t&, CError*);
  std::uint32_t block;
  std::int32_t start;  // 1234 where the value is left alone
  const char16_t* none;
};

constexpr SingleValue kSingleValues[] = {
    {&CProfileAccess::GetMediaCorrect, 1, 1234, u"Profile:Media correct - none"},
    {&CProfileAccess::GetWaveParam, 3, 0, u"Profile:Dot Size parameter - none"},
    {&CProfileAccess::GetMediaFeedSpeed, 4, -1, u"Profile:Media Feed parameter - none"},
    {&CProfileAccess::GetWaveFormParam, 5, 0, u"Profile:Wave Shape parameter - none"},
    {&CProfileAccess::GetUvModeRecommend, 9, -1, u"Profile:UV Mode parameter - none"},
    {&CProfileAccess::GetTopBlowerParam, 10, 0, u"Profile:Top Blowers parameter - none"},
    {&CProfileAccess::GetFeedDirectionParam, 11, 0, u"Profile:Feed Direction parameter - none"},
};

TEST(MediaAccess, GivesTheFirstValueOfABlock) {
  std::vector<MediaBlock> blocks;
  for (const SingleValue& query : kSingleValues) {
    blocks.push_back({query.block, 1, {-100 - static_cast<std::int32_t>(query.block), 5}});
  }
  CProfileAccess access;
  ASSERT_TRUE(InitWith(access, blocks));
  for (const SingleValue& query : kSingleValues) {
    std::int32_t value = 1234;
    CError error;
    EXPECT_TRUE((access.*query.get)(value, &error));
    EXPECT_EQ(value, -100 - static_cast<std::int32_t>(query.block));
    EXPECT_EQ(error.GetErrorReason(), 0u);
  }
  // The load has put the wave form into the information record.
  EXPECT_EQ(access.GetProfileInfo()->WaveFormParam, -105);
}

TEST(MediaAccess, LeavesStartValuesAndAMessageWhereABlockIsMissing) {
  CProfileAccess none;
  CProfileAccess withoutEntry;
  CProfileAccess withoutBlocks;
  ASSERT_TRUE(InitFromEntries(withoutEntry, {{14, 7, {}}}));
  ASSERT_TRUE(InitWith(withoutBlocks, {{12, 1, {1}}}));
  for (const SingleValue& query : kSingleValues) {
    for (CProfileAccess* const access : {&none, &withoutEntry, &withoutBlocks}) {
      std::int32_t value = 1234;
      CError error;
      EXPECT_FALSE((access->*query.get)(value, &error));
      EXPECT_EQ(value, query.start);
      if (access == &none) ExpectError(error, 0, u"");
      if (access == &withoutEntry) ExpectError(error, 0x08008001, u"Profile:Media property entry - none");
      if (access == &withoutBlocks) ExpectError(error, 0x08008001, query.none);
    }
  }
  EXPECT_EQ(withoutBlocks.GetProfileInfo()->WaveFormParam, 0);
}

TEST(MediaAccess, FillsAsManyHeatersAsTheBlockHas) {
  const auto heaters = [](const std::vector<MediaBlock>& blocks, bool& found, CError& error) {
    CProfileAccess access;
    EXPECT_TRUE(InitWith(access, blocks));
    std::array<std::int32_t, 4> values{7, 7, 7, 7};
    found = access.GetHeaterTemperature(values[0], values[1], values[2], values[3], &error);
    return values;
  };
  using Four = std::array<std::int32_t, 4>;
  const Values values{40, 50, 60, 70, 80};
  const Four expected[] = {{40, 50, -1, -1}, {40, -1, -1, -1}, {40, 50, -1, -1},
                           {40, 50, 60, -1}, {40, 50, 60, 70}, {-1, -1, -1, -1}};
  bool found = false;
  for (std::uint32_t count = 0; count < std::size(expected); ++count) {
    CError error;
    EXPECT_EQ(heaters({{2, count, values}}, found, error), expected[count]) << count;
    EXPECT_TRUE(found);
  }
  CError error;
  EXPECT_EQ(heaters({{1, 1, {1}}}, found, error), (Four{-1, -1, -1, -1}));
  EXPECT_FALSE(found);
  ExpectError(error, 0x08008001, u"Profile:Heater parameter - none");
}

TEST(MediaAccess, GivesWholeBlocks) {
  CProfileAccess access;
  Values many(16);
  for (int i = 0; i < 16; ++i) many[static_cast<std::size_t>(i)] = i - 8;
  ASSERT_TRUE(InitWith(access, {{6, 4, {1, 2, 3, 4, 5}}, {7, 1, many}, {8, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9}}}));
  CError error;
  std::int32_t count = 99;
  Values values(16, 77);
  EXPECT_TRUE(access.GetDotSize_SD(values.data(), count, &error));
  EXPECT_EQ(count, 4);
  EXPECT_EQ(Values(values.begin(), values.begin() + 5), (Values{1, 2, 3, 4, 77}));
  std::int32_t* room = values.data();
  EXPECT_TRUE(access.GetPassDensity(count, &room, &error));
  EXPECT_EQ(count, 16);
  EXPECT_EQ(values, many);
  std::array<std::int32_t, 8> m{};
  EXPECT_TRUE(access.GetMaskParameters(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], &error));
  EXPECT_EQ(m, (std::array<std::int32_t, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(error.GetErrorReason(), 0u);
}

TEST(MediaAccess, LeavesWholeBlocksAloneOnFailure) {
  CProfileAccess empty;
  ASSERT_TRUE(InitWith(empty, {}));
  CProfileAccess none;
  for (CProfileAccess* const access : {&empty, &none}) {
    const bool loaded = access == &empty;
    CError error;
    std::int32_t count = 99;
    Values values(16, 77);
    std::int32_t* room = values.data();
    EXPECT_FALSE(access->GetDotSize_SD(room, count, &error));
    EXPECT_EQ(count, 99);
    ExpectError(error, loaded ? 0x08008001 : 0, loaded ? u"Profile:Wave parameter - none" : u"");
    EXPECT_FALSE(access->GetPassDensity(count, &room, &error));
    EXPECT_EQ(count, -1);
    ExpectError(error, loaded ? 0x08008001 : 0, loaded ? u"Profile:Pass Density - none" : u"");
    std::array<std::int32_t, 8> m{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_FALSE(access->GetMaskParameters(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], &error));
    EXPECT_EQ(m, (std::array<std::int32_t, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    ExpectError(error, loaded ? 0x08008001 : 0, loaded ? u"Profile:Pass Mask Parameters - none" : u"");
    EXPECT_EQ(values, Values(16, 77));
  }
}

TEST(MediaAccess, CommonReaderTellsWhatIsWrongWithAnEntry) {
  Access access;
  CError error;
  Values values(16, 77);
  EXPECT_EQ(access.GetMediaPropertyData(nullptr, 1, values.data(), &error), -1);
  ExpectError(error, 0x08008002, u"Profile:Parameter none(media property)");
  const std::unique_ptr<CProfileDataEntry> info(CProfileDataEntry::CreateDataEntry(CProfileDataEntry::kInfo));
  EXPECT_EQ(access.GetMediaPropertyData(info.get(), 1, values.data(), &error), -1);
  ExpectError(error, 0x08008001, u"Profile: Entry format error(not media property). Entry type = 14");
  CMediaPropertyEntry entry;
  EXPECT_EQ(access.GetMediaPropertyData(&entry, 1, values.data(), &error), -1);
  ExpectError(error, 0x08008001, u"Profile: Media property format error(not media property). Entry type = 16");
  entry.GetMediaPropertyData()->AddTail(CMediaPropertyDataEntry::CreateMediaPropertyDataEntry(12, 3));
  EXPECT_EQ(access.GetMediaPropertyData(&entry, 12, values.data(), &error), 0);
  EXPECT_EQ(values, Values(16, 77));
}

TEST(MediaAccess, AnswersForTheInformationRecord) {
  CProfileAccess access;
  for (const auto get :
       {&CProfileAccess::GetColorsetCode, &CProfileAccess::GetInkTypeCode, &CProfileAccess::GetInkMakerCode,
        &CProfileAccess::GetInkVersion, &CProfileAccess::GetDotType}) {
    EXPECT_EQ((access.*get)(), -1);
  }
  char16_t module[33] = u"as before";
  CError error;
  EXPECT_FALSE(access.GetCreateModule(module, &error));
  ASSERT_TRUE(InitFromEntries(access, {{14, 7, {}}}, 1));
  EXPECT_FALSE(access.GetCreateModule(module, &error));
  EXPECT_EQ(std::u16string(module), u"as before");

  ASSERT_TRUE(InitFromEntries(access, {{14, 7, {}}}, 4));
  _tagDeviceProfileInfo& info = *access.GetProfileInfo();
  info.ColorsetCode = 1;
  info.InkTypeCode = 2;
  info.InkMakerCode = 3;
  info.InkVersion = 4;
  info.DotType = 5;
  info.LayoutNumber = 3;
  std::fill(std::begin(info.Binary.CreateModule), std::end(info.Binary.CreateModule), u'm');
  EXPECT_EQ(access.GetColorsetCode(), 1);
  EXPECT_EQ(access.GetInkTypeCode(), 2);
  EXPECT_EQ(access.GetInkMakerCode(), 3);
  EXPECT_EQ(access.GetInkVersion(), 4);
  EXPECT_EQ(access.GetDotType(), 5);
  info.ScanResolution = 6;
  info.FeedResolution = 7;
  info.OutputThirdValue = 8;
  info.OutputFourthValue = 9;
  info.RenderingScan = 10;
  info.RenderingFeed = 11;
  info.Expand = 12;
  std::array<std::uint32_t, 4> values{};
  ASSERT_TRUE(access.GetOutputResolution(values[0], values[1], values[2], values[3]));
  EXPECT_EQ(values, (std::array<std::uint32_t, 4>{6, 7, 8, 9}));
  ASSERT_TRUE(access.GetRenderingResolution(values[0], values[1], values[2]));
  EXPECT_EQ(values, (std::array<std::uint32_t, 4>{10, 11, 12, 9}));
  _tagOutputInfo out{};
  ASSERT_TRUE(access.GetOutputInfo(&out));
  EXPECT_EQ((std::array{out.ScanResolution, out.FeedResolution, out.RenderingScan, out.RenderingFeed, out.Expand}),
            (std::array{6u, 7u, 10u, 11u, 12u}));
  EXPECT_EQ((std::array<std::int64_t, 3>{out.ColorsetCode, out.InkTypeCode, out.DotType}),
            (std::array<std::int64_t, 3>{1, 2, 5}));
  EXPECT_TRUE(access.GetCreateModule(module, &error));
  EXPECT_EQ(std::u16string(module), std::u16string(32, u'm'));
  EXPECT_EQ(error.GetErrorReason(), 0u);
}

}  // namespace
}  // namespace nvx::test
