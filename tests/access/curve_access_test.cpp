#include "support/curve_builder.h"
#include "support/entry_bytes.h"

#include <nvxprofile/curve_entry.h>
#include <nvxprofile/profile_access.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <tuple>

namespace nvx::test {
namespace {

using testing::ElementsAre;

class OpenAccess : public CProfileAccess {
 public:
  using CProfileAccess::GetCurveDataBuffer;
  using CProfileAccess::MergeArrayBYTE;
  using CProfileAccess::MergeArrayDWORD;
  using CProfileAccess::MergeArrayWORD;
};

struct Curve {
  std::uint32_t ink;
  std::uint32_t extendInfo;
  std::uint32_t type;
  Bytes bytes;
};

Bytes CurveSet(const std::vector<Curve>& curves) {
  ByteBuilder form = CurveSetHeader(0, static_cast<std::uint32_t>(curves.size()));
  for (const Curve& curve : curves) {
    form.Append(CurveHeader({.ink = curve.ink,
                             .extendInfo = curve.extendInfo,
                             .type = curve.type,
                             .size = static_cast<std::uint32_t>(curve.bytes.size())}));
  }
  for (const Curve& curve : curves) form.Text("SDEC").Append(curve.bytes);
  return form;
}

Bytes Words(std::initializer_list<std::uint32_t> words) {
  ByteBuilder bytes;
  for (const std::uint32_t word : words) bytes.U16(word);
  return bytes;
}

// What a query gave; size and type are as before where it stored none.
struct Samples {
  const std::uint8_t* bytes = nullptr;
  int size = -1;
  int type = -1;
  CError error = {};
};

template <class Get>
Samples Ask(Get get) {
  Samples answer;
  answer.bytes = static_cast<const std::uint8_t*>(get(answer.size, answer.type, &answer.error));
  return answer;
}

Samples AskLinearization(CProfileAccess& access, std::uint32_t ink) {
  return Ask([&](int& size, int& type, CError* error) { return access.GetLinearization(ink, size, type, error); });
}

// One getter under one signature.
struct Getter {
  std::uint32_t usedType;
  std::uint32_t extendInfo;  // that it looks for when it is given 0; 0 for none
  void* (*get)(CProfileAccess&, std::uint32_t extendInfo, int& size, int& type, CError* error);
  const char16_t* missing;
};

// The getters that take an ink ask for ink 0, as GetUCR and GetBG do.
const Getter kGetters[] = {
    {2, 0, [](CProfileAccess& a, std::uint32_t, int& s, int& t, CError* e) { return a.GetInkLimit(0, s, t, e); },
     u"Profile:Ink limit entry - none"},
    {6, 0, [](CProfileAccess& a, std::uint32_t, int& s, int& t, CError* e) { return a.GetLinearization(0, s, t, e); },
     u"Profile:Linearization entry - none"},
    {7, 0, [](CProfileAccess& a, std::uint32_t, int& s, int& t, CError* e) { return a.GetGrayBalance(0, s, t, e); },
     u"Profile:Gray balance entry - none"},
    {5, 0, [](CProfileAccess& a, std::uint32_t, int& s, int& t, CError* e) { return a.GetLightInk(0, s, t, e); },
     u"Profile:Light ink entry - none"},
    {17, 0,
     [](CProfileAccess& a, std::uint32_t x, int& s, int& t, CError* e) { return a.GetMultiInkLimit(0, x, s, t, e); },
     u"Profile:Multi ink limit entry - none"},
    {4, 0, [](CProfileAccess& a, std::uint32_t x, int& s, int& t, CError* e) { return a.GetVariable(0, x, s, t, e); },
     u"Profile:Vriable curve entry - none"},
    {3, 5,
     [](CProfileAccess& a, std::uint32_t x, int& s, int& t, CError* e) { return a.GetVariableInkLimit(0, x, s, t, e); },
     u"Profile:Vriable ink limit entry - none"},
    {9, 2, [](CProfileAccess& a, std::uint32_t, int& s, int& t, CError* e) { return a.GetUCR(s, t, e); },
     u"Profile:UCR entry - none"},
    {9, 1, [](CProfileAccess& a, std::uint32_t, int& s, int& t, CError* e) { return a.GetBG(s, t, e); },
     u"Profile:UCR entry - none"},
};

TEST(CurveAccess, EachGetterReadsItsEntry) {
  const Bytes form = CurveSet({{1, 0, 1, {99}}, {0, 8, 1, {8, 8}}, {0, 5, 1, {5}}, {0, 2, 1, {2}}, {0, 1, 2, {1, 0}}});
  for (const Getter& getter : kGetters) {
    const auto ask = [&](CProfileAccess& access, std::uint32_t extendInfo = 0) {
      return Ask([&](int& s, int& t, CError* error) { return getter.get(access, extendInfo, s, t, error); });
    };
    CProfileAccess without, empty, access;
    const Samples nothing = ask(without);
    EXPECT_EQ(nothing.bytes, nullptr);
    EXPECT_EQ(nothing.error.GetErrorReason(), 0u);
    ASSERT_TRUE(InitFromEntries(empty, {}));
    const Samples missing = ask(empty);
    EXPECT_EQ(missing.bytes, nullptr);
    ExpectError(missing.error, kReasonNotFound, getter.missing);
    EXPECT_EQ(std::tuple(nothing.size, missing.size, missing.type), std::tuple(-1, -1, -1));

    ASSERT_TRUE(InitFromEntries(access, {{getter.usedType, 6, form}}));
    const Samples found = ask(access);
    ASSERT_NE(found.bytes, nullptr) << getter.usedType;
    EXPECT_EQ(found.bytes[0], getter.extendInfo == 0 ? 8 : getter.extendInfo);
    EXPECT_EQ(found.type, getter.extendInfo == 1 ? 2 : 1);
    if (getter.extendInfo == 1 || getter.extendInfo == 2) continue;
    EXPECT_EQ(found.size, getter.extendInfo == 0 ? 2 : 1);
    const bool takesExtendInfo = getter.usedType == 17 || getter.usedType == 4 || getter.usedType == 3;
    EXPECT_EQ(ask(access, 2).bytes[0], takesExtendInfo ? 2 : 8);
  }
}

TEST(CurveAccess, BytesThatNobodyHasParsedAnswer) {
  CProfileAccess access;
  ASSERT_TRUE(InitFromEntries(access, {}));
  AddEntry(*access.GetProfileData(), 6, CurveSet({{3, 0, 1, {42}}}));
  const Samples samples = AskLinearization(access, 3);
  ASSERT_NE(samples.bytes, nullptr);
  EXPECT_EQ(*samples.bytes, 42);
}

TEST(CurveAccess, TellsWhyACurveIsNotThere) {
  OpenAccess access;
  ASSERT_TRUE(InitFromEntries(access, {{2, 6, CurveSet({{1, 0, 1, {1}}})}, {6, 6, CurveSet({{3, 0, 2, {}}})}}));
  CError error;
  int size = -1;
  int type = -1;
  EXPECT_EQ(access.GetInkLimit(99, size, type, &error), nullptr);
  ExpectError(error, kReasonBadArgument, u"Profile: Parameter error InkColorCode = 99, Entry type = 2");
  EXPECT_EQ(size, 0);
  EXPECT_EQ(type, 0);
  EXPECT_EQ(access.GetLinearization(3, size, type, &error), nullptr);
  ExpectError(error, kReasonNotFound, u"Profile: Specify entry size is 0.InkColorCode = 3,Entry type = 6");
  size = type = -1;
  EXPECT_EQ(access.GetCurveDataBuffer(nullptr, 1, 0, size, type, &error), nullptr);
  ExpectError(error, kReasonNotFound, u"Profile: data none.");
  EXPECT_EQ(size, 0);

  CProfileDataEntry noCurves;
  noCurves.SetUsedType(16);
  EXPECT_EQ(access.GetCurveDataBuffer(&noCurves, 1, 0, size, type, &error), nullptr);
  ExpectError(error, kReasonNotFound, u"Profile: Entry format error(not curve data). Entry type = 16");
}

TEST(CurveAccess, PassesDataTypes3And4OnAndRefusesOthers) {
  // An empty buffer keeps the set as it is, whatever it holds.
  OpenAccess access;
  CLinearizationEntry entry;
  CCurveDataEntry* const curve = MakeCurve(CCurveDataEntry::kSamples8, 4, {1, 2, 3}).release();
  entry.GetCurveData()->AddTail(curve);
  for (const std::uint32_t dataType : {1u, 2u, 3u, 4u, 0u, 5u}) {
    curve->SetDataType(dataType);
    CError error;
    int size = -1;
    int type = -1;
    void* const samples = access.GetCurveDataBuffer(&entry, 4, 0, size, type, &error);
    EXPECT_EQ(size, 3);
    if (dataType >= 1 && dataType <= 4) {
      EXPECT_EQ(samples, curve->GetRefBuffer());
      EXPECT_EQ(type, static_cast<int>(dataType));
    } else {
      EXPECT_EQ(samples, nullptr);
      EXPECT_EQ(type, 0);
      ExpectError(error, kReasonNotFound, u"Profile: Parameter error.InkColorCode = 4,Entry type = 6");
    }
  }
}

TEST(CurveAccess, OldProfilesTranslateTwoInksByTheColorset) {
  CProfileAccess access;
  ASSERT_TRUE(InitFromEntries(
      access, {{6, 6, CurveSet({{1, 0, 1, {1}}, {5, 0, 1, {5}}, {10, 0, 1, {10}}, {14, 0, 1, {14}}})}}));
  struct Case {
    std::uint32_t major;
    std::int32_t colorset;
    std::uint32_t ink;
    int found;
  };
  for (const Case& c : {Case{2, 4, 10, 1}, Case{2, 5, 10, 1}, Case{2, 3, 10, 10}, Case{2, 5, 14, 5}, Case{2, 4, 14, 14},
                        Case{3, 5, 10, 10}, Case{3, 5, 14, 14}, Case{1, 5, 5, 5}}) {
    access.GetProfileInfo()->ProfileMajorVersion = c.major;
    access.GetProfileInfo()->ColorsetCode = c.colorset;
    const Samples samples = AskLinearization(access, c.ink);
    ASSERT_NE(samples.bytes, nullptr);
    EXPECT_EQ(samples.bytes[0], c.found) << c.major << " " << c.colorset << " " << c.ink;
  }
  CProfileAccess poor;
  ASSERT_TRUE(InitFromEntries(poor, {{6, 6, CurveSet({{10, 0, 1, {10}}})}}));
  poor.GetProfileInfo()->ProfileMajorVersion = 1;
  poor.GetProfileInfo()->ColorsetCode = 4;
  const Samples samples = AskLinearization(poor, 10);
  EXPECT_EQ(samples.bytes, nullptr);
  ExpectError(samples.error, kReasonBadArgument, u"Profile: Parameter error InkColorCode = 1, Entry type = 6");
}

// The merge of a gray balance with a linearization of ink 3: the samples as bytes, or nothing if it fails.
std::vector<int> Merged(std::uint32_t grayType, const Bytes& gray, std::uint32_t type, const Bytes& linearization) {
  CProfileAccess access;
  if (!InitFromEntries(access,
                       {{7, 6, CurveSet({{3, 0, grayType, gray}})}, {6, 6, CurveSet({{3, 0, type, linearization}})}}))
    return {};
  CError error;
  int size = 0;
  int dataType = 0;
  EXPECT_TRUE(access.GetMergeGrayBalance(3, nullptr, size, dataType, &error));
  EXPECT_EQ(size, static_cast<int>(linearization.size()));
  EXPECT_EQ(dataType, static_cast<int>(type));
  // One byte behind, which must stay, and an odd address.
  std::vector<std::uint8_t> buffer(static_cast<std::size_t>(size) + 2, 0xEE);
  EXPECT_TRUE(access.GetMergeGrayBalance(3, buffer.data() + 1, size, dataType, &error));
  EXPECT_EQ(buffer.back(), 0xEE);
  return std::vector<int>(buffer.begin() + 1, buffer.end() - 1);
}

TEST(CurveAccess, MergesGrayBalanceThenLinearization) {
  EXPECT_THAT(Merged(1, {0, 1, 2}, 1, {10, 20, 30}), ElementsAre(10, 20, 30));
  EXPECT_THAT(Merged(1, {2, 2, 0}, 1, {10, 20, 30}), ElementsAre(30, 30, 10));
  EXPECT_THAT(Merged(2, Words({1, 0}), 2, Words({0x1234, 0x5678})), ElementsAre(0x78, 0x56, 0x34, 0x12));
}

TEST(CurveAccess, TheMergeStaysInsideBothCurves) {
  EXPECT_THAT(Merged(1, {0, 3, 255}, 1, {10, 20, 30}), ElementsAre(10, 30, 30));
  EXPECT_THAT(Merged(1, {2, 1}, 1, {10, 20, 30}), ElementsAre(30, 20, 20));
  EXPECT_THAT(Merged(1, {2, 1, 0, 0, 0}, 1, {10, 20, 30}), ElementsAre(30, 20, 10));
  EXPECT_THAT(Merged(1, {1, 0}, 2, Words({7, 0x100})), ElementsAre(0, 1, 7, 0));
  EXPECT_THAT(Merged(2, Words({1, 65535}), 1, {10, 20}), ElementsAre(20, 20));
}

TEST(CurveAccess, AMergeNeedsBothCurves) {
  const Bytes form = CurveSet({{3, 0, 1, {1, 2}}});
  CError error;
  int size = -1;
  int type = -1;
  CProfileAccess access;
  EXPECT_FALSE(access.GetMergeGrayBalance(3, nullptr, size, type, &error));
  EXPECT_EQ(error.GetErrorReason(), 0u);
  ASSERT_TRUE(InitFromEntries(access, {{6, 6, form}}));
  EXPECT_FALSE(access.GetMergeGrayBalance(3, nullptr, size, type, &error));
  ExpectError(error, kReasonNotFound, u"Profile:Gray balance entry - none");
  ASSERT_TRUE(InitFromEntries(access, {{7, 6, form}}));
  EXPECT_FALSE(access.GetMergeGrayBalance(3, nullptr, size, type, &error));
  ExpectError(error, kReasonNotFound, u"Profile:Linearization entry - none");
  EXPECT_FALSE(access.GetMergeGrayBalance(4, nullptr, size, type, &error));
  ExpectError(error, kReasonBadArgument, u"Profile: Parameter error InkColorCode = 4, Entry type = 7");
}

TEST(CurveAccess, MergeArraysCountOutputAndIndices) {
  OpenAccess access;
  std::array<std::uint32_t, 3> out = {9, 9, 9};
  std::array<std::uint32_t, 2> first = {3, 0};
  std::array<std::uint32_t, 4> second = {100000, 1, 2, 200000};  // longer than what the count says
  access.MergeArrayDWORD(out.data(), first.data(), second.data(), 0);
  access.MergeArrayDWORD(out.data(), first.data(), second.data(), -1);
  EXPECT_THAT(out, ElementsAre(9, 9, 9));
  access.MergeArrayDWORD(out.data(), first.data(), second.data(), 2);
  EXPECT_THAT(out, ElementsAre(200000, 100000, 9));
  std::uint8_t bytes[] = {9, 9, 1, 0, 7, 8};
  access.MergeArrayBYTE(bytes, bytes + 2, bytes + 4, 2);
  EXPECT_THAT(bytes, ElementsAre(8, 7, 1, 0, 7, 8));
  std::uint16_t words[] = {9, 9, 1, 0, 700, 800};
  access.MergeArrayWORD(words, words + 2, words + 4, 2);
  EXPECT_THAT(words, ElementsAre(800, 700, 1, 0, 700, 800));
}

TEST(IccAccess, TheReplacementFallsBackOnTheProfile) {
  CProfileAccess access;
  CError error;
  int size = 77;
  EXPECT_EQ(access.GetIccProfile(size, &error), nullptr);
  EXPECT_EQ(access.GetReplaceProfile(size, &error), nullptr);
  EXPECT_EQ(error.GetErrorReason(), 0u);
  ASSERT_TRUE(InitFromEntries(access, {}));
  EXPECT_EQ(access.GetReplaceProfile(size, &error), nullptr);
  ExpectError(error, kReasonNotFound, u"Profile:ICC profile entry - none");
  EXPECT_EQ(size, 77);
  AddEntry(*access.GetProfileData(), 10, Bytes(5, 1));
  std::uint8_t* const profile = access.GetIccProfile(size, &error);
  ASSERT_NE(profile, nullptr);
  EXPECT_EQ(size, 5);
  EXPECT_EQ(access.GetReplaceProfile(size, &error), profile);
  AddEntry(*access.GetProfileData(), 18, Bytes(6, 1), kRouteReplaceProfile);
  EXPECT_NE(access.GetReplaceProfile(size, &error), profile);
  EXPECT_EQ(size, 6);
  EXPECT_EQ(access.GetIccProfile(size, &error), profile);
}

}  // namespace
}  // namespace nvx::test
