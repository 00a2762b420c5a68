// The queries that answer in numbers and texts, in one table: of a profile with a value of its own in each field, of
// one that lacks what is asked for, and of none.
#include "core/text.h"
#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace nvx::test {
namespace {

// What a query gave: its result, then what it stored.
using Answer = std::vector<std::int64_t>;

constexpr int kAsBefore = 77;

template <auto kGet>
Answer Code(CProfileAccess& access, CError*) {
  return {(access.*kGet)()};
}

template <auto kGet>
Answer Value(CProfileAccess& access, CError* error) {
  std::int32_t value = kAsBefore;
  return {(access.*kGet)(value, error), value};
}

template <auto kGet>
Answer Counts(CProfileAccess& access, CError* error) {
  std::uint32_t values = kAsBefore, bytes = kAsBefore;
  return {(access.*kGet)(values, bytes, error), values, bytes};
}

template <auto kGet>
Answer Parameters(CProfileAccess& access, CError* error) {
  std::array<std::uint32_t, 4> values{kAsBefore, kAsBefore, kAsBefore, kAsBefore};
  std::uint8_t byte = kAsBefore;
  return {(access.*kGet)(values.data(), &byte, error), values[0], values[1], values[2], values[3], byte};
}

Answer WithResult(bool result, const auto&... numbers) {
  Answer answer{result};
  (answer.insert(answer.end(), std::begin(numbers), std::end(numbers)), ...);
  return answer;
}

Answer OutputInfo(CProfileAccess& access, CError*) {
  _tagOutputInfo out{};
  const bool result = access.GetOutputInfo(&out);
  const std::array numbers{out.ScanResolution, out.FeedResolution, out.RenderingScan, out.RenderingFeed, out.Expand};
  return WithResult(result, FieldText(out.ModelCode), FieldText(out.ModelSubCode), FieldText(out.InternalCode), numbers,
                    std::array{out.ColorsetCode, out.InkTypeCode, out.DotType});
}

Answer OutputResolution(CProfileAccess& access, CError*) {
  std::array<std::uint32_t, 4> v{kAsBefore, kAsBefore, kAsBefore, kAsBefore};
  return WithResult(access.GetOutputResolution(v[0], v[1], v[2], v[3]), v);
}

Answer RenderingResolution(CProfileAccess& access, CError*) {
  std::array<std::uint32_t, 3> v{kAsBefore, kAsBefore, kAsBefore};
  return WithResult(access.GetRenderingResolution(v[0], v[1], v[2]), v);
}

Answer CreateModule(CProfileAccess& access, CError* error) {
  char16_t module[33] = u"M";
  const bool result = access.GetCreateModule(module, error);
  return WithResult(result, FieldText(module));
}

Answer HeaterTemperature(CProfileAccess& access, CError* error) {
  std::array<std::int32_t, 4> v{kAsBefore, kAsBefore, kAsBefore, kAsBefore};
  return WithResult(access.GetHeaterTemperature(v[0], v[1], v[2], v[3], error), v);
}

Answer MaskParameters(CProfileAccess& access, CError* error) {
  std::array<std::int32_t, 8> v;
  v.fill(kAsBefore);
  return WithResult(access.GetMaskParameters(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], error), v);
}

Answer DotSize(CProfileAccess& access, CError* error) {
  std::array<std::int32_t, 5> v;
  v.fill(kAsBefore);
  std::int32_t count = kAsBefore;
  const bool result = access.GetDotSize_SD(v.data(), count, error);
  return WithResult(result, std::array{count}, v);
}

Answer PassDensity(CProfileAccess& access, CError* error) {
  std::array<std::int32_t, 17> v;
  v.fill(kAsBefore);
  std::int32_t* values = v.data();
  std::int32_t count = kAsBefore;
  const bool result = access.GetPassDensity(count, &values, error);
  return WithResult(result, std::array{count}, v);
}

Answer WeftVersion(CProfileAccess& access, CError* error) { return {access.IsSupportWeftVersion(error)}; }

constexpr const char16_t* kNoMedia = u"Profile:Media property entry - none";
constexpr const char16_t* kNoMasks = u"Profile:Mask DownLoad Entry - none";

struct Query {
  const char* name;
  Answer (*ask)(CProfileAccess&, CError*);
  Answer answer;
  Answer failure;
  const char16_t* withoutEntry = nullptr;  // messages; null for what asks no entry
  const char16_t* withoutBlock = nullptr;
};

// Value i of media block b is -100 b - i; the fields of the record are numbered from 1.
// clang-format off
const Query kQueries[] = {
    {"GetColorsetCode", Code<&CProfileAccess::GetColorsetCode>, {1}, {-1}},
    {"GetInkTypeCode", Code<&CProfileAccess::GetInkTypeCode>, {2}, {-1}},
    {"GetInkMakerCode", Code<&CProfileAccess::GetInkMakerCode>, {3}, {-1}},
    {"GetInkVersion", Code<&CProfileAccess::GetInkVersion>, {4}, {-1}},
    {"GetDotType", Code<&CProfileAccess::GetDotType>, {5}, {-1}},
    {"GetOutputInfo", OutputInfo, {true, '1', '2', '3', '4', '5', '6', '7', '8', 6, 7, 8, 9, 10, 1, 2, 5}, {false, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"GetOutputResolution", OutputResolution, {true, 6, 7, 11, 61}, {false, 77, 77, 77, 77}},
    {"GetRenderingResolution", RenderingResolution, {true, 8, 9, 10}, {false, 77, 77, 77}},
    {"GetCreateModule", CreateModule, WithResult(true, std::u16string(32, u'm')), {false, 'M'}},
    {"GetMediaCorrect", Value<&CProfileAccess::GetMediaCorrect>, {true, -100}, {false, 77}, kNoMedia, u"Profile:Media correct - none"},
    {"GetHeaterTemperature", HeaterTemperature, {true, -200, -201, -202, -203}, {false, -1, -1, -1, -1}, kNoMedia, u"Profile:Heater parameter - none"},
    {"GetWaveParam", Value<&CProfileAccess::GetWaveParam>, {true, -300}, {false, 0}, kNoMedia, u"Profile:Dot Size parameter - none"},
    {"GetMediaFeedSpeed", Value<&CProfileAccess::GetMediaFeedSpeed>, {true, -400}, {false, -1}, kNoMedia, u"Profile:Media Feed parameter - none"},
    {"GetWaveFormParam", Value<&CProfileAccess::GetWaveFormParam>, {true, -500}, {false, 0}, kNoMedia, u"Profile:Wave Shape parameter - none"},
    {"GetDotSize_SD", DotSize, {true, 4, -600, -601, -602, -603, 77}, {false, 77, 77, 77, 77, 77, 77}, kNoMedia, u"Profile:Wave parameter - none"},
    {"GetPassDensity", PassDensity, {true, 16, -700, -701, -702, -703, -704, -705, -706, -707, -708, -709, -710, -711, -712, -713, -714, -715, 77}, WithResult(false, std::array{-1}, std::vector(17, kAsBefore)), kNoMedia, u"Profile:Pass Density - none"},
    {"GetMaskParameters", MaskParameters, {true, -800, -801, -802, -803, -804, -805, -806, -807}, {false, 77, 77, 77, 77, 77, 77, 77, 77}, kNoMedia, u"Profile:Pass Mask Parameters - none"},
    {"GetUvModeRecommend", Value<&CProfileAccess::GetUvModeRecommend>, {true, -900}, {false, -1}, kNoMedia, u"Profile:UV Mode parameter - none"},
    {"GetTopBlowerParam", Value<&CProfileAccess::GetTopBlowerParam>, {true, -1000}, {false, 0}, kNoMedia, u"Profile:Top Blowers parameter - none"},
    {"GetFeedDirectionParam", Value<&CProfileAccess::GetFeedDirectionParam>, {true, -1100}, {false, 0}, kNoMedia, u"Profile:Feed Direction parameter - none"},
    {"GetMaskParamCount", Counts<&CProfileAccess::GetMaskParamCount>, {true, 1, 0}, {false, 77, 77}, kNoMasks, u"Profile:Mask DownLoad Param Count - none"},
    {"GetMaskParameter", Parameters<&CProfileAccess::GetMaskParameter>, {true, 31, 77, 77, 77, 77}, {false, 77, 77, 77, 77, 77}, kNoMasks, u"Profile:Mask DownLoad Param - none"},
    {"GetPrinterMaskParamCount", Counts<&CProfileAccess::GetPrinterMaskParamCount>, {true, 3, 0}, {false, 77, 77}, kNoMasks, u"Profile:Printer Mask Param Count - none"},
    {"GetPrinterMaskParameter", Parameters<&CProfileAccess::GetPrinterMaskParameter>, {true, 1, 2, 0xFFFFFFFF, 77, 77}, {false, 77, 77, 77, 77, 77}, kNoMasks, u"Profile:Printer Mask Param - none"},
    {"IsSupportWeftVersion", WeftVersion, {true}, {false}, kNoMasks},
};
// clang-format on

// All blocks, from the last to the first.
Bytes Media() {
  std::vector<MediaBlock> blocks;
  for (std::int32_t block = 11; block > 0; --block) {
    MediaBlock numbered{static_cast<std::uint32_t>(block), block == 2 || block == 6 ? 4u : 1u, {}};
    for (std::int32_t i = 0; i < 16; ++i) numbered.values.push_back(-100 * block - i);
    blocks.push_back(numbered);
  }
  return MediaForm(blocks);
}

void NumberTheRecord(_tagDeviceProfileInfo& info) {
  CopyText(info.ModelCode, std::u16string_view(u"1234"));
  CopyText(info.ModelSubCode, std::u16string_view(u"56"));
  CopyText(info.InternalCode, std::u16string_view(u"78"));
  std::int32_t number = 0;
  for (std::int32_t* const code :
       {&info.ColorsetCode, &info.InkTypeCode, &info.InkMakerCode, &info.InkVersion, &info.DotType}) {
    *code = ++number;
  }
  for (std::uint32_t* const size :
       {&info.ScanResolution, &info.FeedResolution, &info.RenderingScan, &info.RenderingFeed, &info.Expand}) {
    *size = static_cast<std::uint32_t>(++number);
  }
  info.OutputThirdValue = static_cast<std::uint16_t>(++number);
  info.LayoutNumber = kBinaryView;
  std::fill(std::begin(info.Binary.CreateModule), std::end(info.Binary.CreateModule), u'm');
  std::fill(std::begin(info.Binary.MakerText), std::end(info.Binary.MakerText), u'x');
}

TEST(Queries, EachAnswersFromItsOwnField) {
  CProfileAccess access;
  constexpr std::size_t kOutput = 120;  // where the block of the output starts
  const Bytes masks = With(MaskDownloadForm(31), kOutput, 61 | 62 << 16 | 63 << 24);
  ASSERT_TRUE(InitFromEntries(access, {{16, 8, Media()}, {27, 12, masks}}));
  // What the load takes over from the entries.
  _tagDeviceProfileInfo& info = *access.GetProfileInfo();
  EXPECT_EQ((Answer{info.WaveFormParam, info.OutputFourthValue, info.OutputCodeA, info.OutputCodeB}),
            (Answer{-500, 61, 62, 63}));
  NumberTheRecord(info);
  for (const Query& query : kQueries) {
    CError error;
    EXPECT_EQ(query.ask(access, &error), query.answer) << query.name;
    EXPECT_EQ(error.GetErrorReason(), 0u) << query.name;
  }
  EXPECT_FALSE(access.GetOutputInfo(nullptr));
}

TEST(Queries, FailuresLeaveStartValuesAndAMessage) {
  CProfileAccess none, withoutEntries, withoutBlocks;
  ASSERT_TRUE(InitFromEntries(withoutEntries, {{14, 7, {}}}));
  ASSERT_TRUE(
      InitFromEntries(withoutBlocks, {{16, 8, MediaForm({{12, 1, {1}}})}, {27, 12, MaskStreamHeader(3, 0, 0)}}));
  EXPECT_EQ(withoutBlocks.GetProfileInfo()->WaveFormParam, 0);
  for (const Query& query : kQueries) {
    SCOPED_TRACE(query.name);
    const auto expectFailure = [&](CProfileAccess& access, const char16_t* message) {
      CError error;
      EXPECT_EQ(query.ask(access, &error), query.failure);
      ExpectError(error, message != nullptr ? std::uint32_t{kReasonNotFound} : 0, TextOf(message));
    };
    expectFailure(none, nullptr);
    if (query.withoutEntry != nullptr) expectFailure(withoutEntries, query.withoutEntry);
    if (query.withoutBlock != nullptr) expectFailure(withoutBlocks, query.withoutBlock);
  }
}

TEST(Queries, TheCreatingModuleIsThatOfTheCurrentGeneration) {
  CProfileAccess other;
  ASSERT_TRUE(InitFromEntries(other, {{14, 7, {}}}, 1));
  EXPECT_EQ(CreateModule(other, nullptr), (Answer{false, 'M'}));
  // A text-headed profile may have the route as well; its header has no such field.
  CProfileAccess text;
  ASSERT_TRUE(InitFromEntries(text, {{14, 7, {}}}, 4));
  text.GetProfileInfo()->LayoutNumber = kTextView;
  std::memset(&text.GetProfileInfo()->Text, 'x', sizeof text.GetProfileInfo()->Text);
  EXPECT_EQ(CreateModule(text, nullptr), (Answer{true}));
}

}  // namespace
}  // namespace nvx::test
