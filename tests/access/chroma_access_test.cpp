#include "support/entry_bytes.h"
#include "support/entry_forms.h"

#include <nvxprofile/lut.h>
#include <nvxprofile/model_info.h>
#include <nvxprofile/profile_access.h>

#include <gtest/gtest.h>

#include <vector>

namespace nvx::test {
namespace {

using Codes = std::vector<std::uint32_t>;

class Access : public CProfileAccess {
 public:
  using CProfileAccess::GetChromaLutData;
};

// 2 inputs, 3 outputs, grid 2.
Bytes Form() {
  ByteBuilder form = LutHeader(2, 3, 2);
  for (const std::uint32_t code : {0x101u, 2u, 30u, 31u, 0xFFFFFFu}) form.Append(LutChannel(code, 0, ""));
  for (std::uint32_t i = 1; i <= 12; ++i) form.U8(i * 10);
  return form;
}

CLutData3D& TableOf(CProfileAccess& access) {
  return *dynamic_cast<CSeparateChromaEntry&>(*access.GetProfileData()->GetProfileDataEntryFromList(8)).GetLutData();
}

TEST(ChromaAccess, GivesCodesAndSamples) {
  CProfileAccess access;
  ASSERT_TRUE(InitFromEntries(access, {{8, 5, Form()}}));
  CError error;
  EXPECT_EQ(access.GetChromaInputChannel(nullptr, &error), 2);
  Codes codes(3, 99);
  EXPECT_EQ(access.GetChromaInputChannel(codes.data(), &error), 2);
  EXPECT_EQ(codes, (Codes{1, 2, 99}));
  EXPECT_EQ(access.GetChromaOutputChannel(codes.data(), &error), 3);
  EXPECT_EQ(codes, (Codes{30, 31, 255}));

  std::uint32_t grid = 0;
  EXPECT_EQ(access.GetChromaData(nullptr, grid, &error), 12);
  EXPECT_EQ(grid, 2u);
  Bytes samples(13, 0xEE);
  EXPECT_EQ(access.GetChromaData(samples.data(), grid, &error), 12);
  EXPECT_EQ(samples, (Bytes{10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120, 0xEE}));
  EXPECT_EQ(error.GetErrorReason(), 0u);
}

TEST(ChromaAccess, StaysInsideATableThatACallerChanged) {
  CProfileAccess access;
  ASSERT_TRUE(InitFromEntries(access, {{8, 5, Form()}}));
  CLutData3D& table = TableOf(access);
  table.GetAt(0)->Add(99);
  table.GetAt(2)->DeleteAllElement();
  table.GetAt(2)->Add(7);
  CError error;
  std::uint32_t grid = 0;
  Bytes samples(13, 0xEE);
  EXPECT_EQ(access.GetChromaData(samples.data(), grid, &error), 12);
  EXPECT_EQ(samples, (Bytes{10, 20, 30, 40, 50, 60, 7, 0, 0, 100, 110, 120, 0xEE}));

  table.DeleteAllElement();
  EXPECT_EQ(access.GetChromaData(samples.data(), grid, &error), 12);
  EXPECT_EQ(samples, (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xEE}));
  Codes codes(2, 99);
  EXPECT_EQ(access.GetChromaInputChannel(codes.data(), &error), 2);
  EXPECT_EQ(codes, (Codes{99, 99}));

  table.Initialize(6, 17);
  EXPECT_EQ(access.GetChromaData(nullptr, grid, &error), 29478);
  EXPECT_EQ(grid, 17u);
  table.Initialize(4, 4000);
  EXPECT_EQ(access.GetChromaData(nullptr, grid, &error), -1);
  EXPECT_EQ(grid, 4000u);
}

TEST(ChromaAccess, FailsWithOneMessage) {
  CProfileAccess none, missing, foreign;
  ASSERT_TRUE(InitFromEntries(missing, {{14, 7, {}}}) && InitFromEntries(foreign, {{14, 7, {}}}));
  auto* const other = new CModelEntry;
  other->SetUsedType(8);
  foreign.GetProfileData()->SetProfileDataEntry(other, 4);
  for (CProfileAccess* const access : {&none, &missing, &foreign}) {
    CError errors[3];
    std::uint32_t grid = 77;
    Codes codes(1, 99);
    EXPECT_EQ(access->GetChromaInputChannel(codes.data(), &errors[0]), -1);
    EXPECT_EQ(access->GetChromaOutputChannel(codes.data(), &errors[1]), -1);
    EXPECT_EQ(access->GetChromaData(nullptr, grid, &errors[2]), -1);
    EXPECT_EQ(grid, 77u);
    EXPECT_EQ(codes, (Codes{99}));
    for (const CError& error : errors) ExpectError(error, kReasonNotFound, u"Profile:Chroma entry - none");
  }
  Access access;
  CError error;
  EXPECT_EQ(access.GetChromaLutData(&error), nullptr);
  EXPECT_EQ(error.GetErrorReason(), 0u);
}

}  // namespace
}  // namespace nvx::test
