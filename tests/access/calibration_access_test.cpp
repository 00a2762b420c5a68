// What a loaded profile answers about its calibrations.
#include "support/entry_bytes.h"

#include <nvxprofile/calibration_history.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

namespace nvx::test {
namespace {

class CalibrationAccess : public testing::Test {
 protected:
  // Loads a profile whose history has a target and calibrations of the given times; none at all without `history`.
  void Load(const std::vector<std::int64_t>& times, bool target = true, bool history = true) {
    CCalibrationHistoryEntry entry;
    for (const std::int64_t time : times) {
      NewCalibration calibration;
      calibration.name = u"twenty characters it";
      calibration.value = -3;
      calibration.time = time;
      calibration.inkLimit = std::make_unique<CCalibrationInklimitEntry>();
      AddCurve(*calibration.inkLimit, 0);
      AddCurve(*calibration.inkLimit, 12);
      calibration.grayBalance = std::make_unique<CCalibrationGrayBalanceEntry>();
      AddCurve(*calibration.grayBalance, 0);
      AddCalibration(entry, std::move(calibration));
    }
    if (times.empty() && target) entry.SetProfileDataEntry(new CCalibrationTargetEntry);
    ASSERT_TRUE(history ? InitFromEntry(access_, entry) : InitFromEntries(access_, {{21, 9, {}}}));
  }

  static void AddCurve(CProfileCurveEntry& entry, std::uint32_t extendInfo) {
    auto* const curve = new CCurveDataEntry16;
    curve->SetInkID(3);
    curve->SetExtendInfo(extendInfo);
    curve->Add(500 + extendInfo);
    entry.GetCurveData()->AddTail(curve);
  }

  CProfileAccess access_;
  CError error_;
  int size_ = 7;
  int type_ = 7;
};

TEST_F(CalibrationAccess, WithoutCalibrations) {
  std::int32_t count = 5;
  std::int32_t code = 5;
  int value = 5;
  std::int64_t time = 5;
  char16_t name[21] = {};
  EXPECT_FALSE(access_.GetCalibrationCount(count, &error_));
  EXPECT_FALSE(access_.GetNewestCalibrationCode(code, &error_));
  EXPECT_EQ(count, 0);
  EXPECT_EQ(code, 5);
  EXPECT_EQ(access_.GetCalibrationInkLimit(3, 0, size_, type_, &error_), nullptr);

  for (const auto& [target, history] : {std::pair(true, true), {false, true}, {true, false}}) {
    Load({}, target, history);
    EXPECT_EQ(access_.GetCalibrationCount(count, &error_), target && history);
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(access_.GetNewestCalibrationCode(code, &error_));
    EXPECT_EQ(code, -1);
    EXPECT_FALSE(access_.GetMultiCalibrationCode(&code, &error_));
    EXPECT_FALSE(access_.GetCalibrationInfo(0, code, value, time, name, &error_));
    EXPECT_EQ(error_.GetErrorReason(), 0u);
  }
}

TEST_F(CalibrationAccess, ListsCalibrationsAndFindsTheNewest) {
  Load({5, 9, 9});
  // A child of another class takes no element.
  auto* const history =
      static_cast<CCalibrationHistoryEntry*>(access_.GetProfileData()->GetProfileDataEntryFromList(19));
  history->InsertProfileDataEntry(1, new CCalibrationInfoEntry);
  std::int32_t count = 0;
  EXPECT_TRUE(access_.GetCalibrationCount(count, &error_));
  EXPECT_EQ(count, 4);
  std::array<std::int32_t, 4> codes = {-7, -7, -7, -7};
  EXPECT_TRUE(access_.GetMultiCalibrationCode(codes.data(), &error_));
  EXPECT_THAT(codes, testing::ElementsAre(0, 1, 2, -7));
  std::int32_t newest = 0;
  EXPECT_TRUE(access_.GetNewestCalibrationCode(newest, &error_));
  EXPECT_EQ(newest, 1);

  int code = 0;
  int value = 0;
  std::int64_t time = 0;
  char16_t name[22];
  std::fill(std::begin(name), std::end(name), u'x');
  EXPECT_FALSE(access_.GetCalibrationInfo(0, code, value, time, name, &error_));
  EXPECT_TRUE(access_.GetCalibrationInfo(3, code, value, time, name, &error_));
  EXPECT_EQ(code, 2);
  EXPECT_EQ(value, -3);
  EXPECT_EQ(time, 9);
  EXPECT_EQ(std::u16string(name), u"twenty characters it");
  EXPECT_EQ(name[21], u'x');
  for (const int index : {-1, 4, 5, 6, INT32_MAX, INT32_MIN}) {
    EXPECT_FALSE(access_.GetCalibrationInfo(index, code, value, time, name, &error_)) << index;
  }

  // A name of memory that fills its field gives 21 characters.
  auto* const last = static_cast<CContainerEntry*>(history->GetProfileDataEntry(4));
  std::fill(std::begin(last->GetContainerData()->Name), std::end(last->GetContainerData()->Name), u'n');
  EXPECT_TRUE(access_.GetCalibrationInfo(3, code, value, time, name, &error_));
  EXPECT_EQ(std::u16string(name, 22), std::u16string(21, u'n') + u"x");
}

TEST_F(CalibrationAccess, NoTimeAboveZeroIsNoNewest) {
  Load({0, -4});
  std::int32_t newest = 8;
  EXPECT_TRUE(access_.GetNewestCalibrationCode(newest, &error_));
  EXPECT_EQ(newest, -1);
  Load({0, 1});
  EXPECT_TRUE(access_.GetNewestCalibrationCode(newest, &error_));
  EXPECT_EQ(newest, 1);
}

TEST_F(CalibrationAccess, CurvesByCode) {
  Load({5, 6});
  const auto* const limit = static_cast<std::uint16_t*>(access_.GetCalibrationInkLimit(3, 1, size_, type_, &error_));
  ASSERT_NE(limit, nullptr);
  EXPECT_EQ(*limit, 512);
  EXPECT_EQ(size_, 2);
  EXPECT_EQ(type_, 2);
  const auto* const gray = static_cast<std::uint16_t*>(access_.GetCalibrationGrayBalance(3, 0, size_, type_, &error_));
  ASSERT_NE(gray, nullptr);
  EXPECT_EQ(*gray, 500);

  EXPECT_EQ(access_.GetCalibrationInkLimit(3, -1, size_, type_, &error_), nullptr);
  EXPECT_EQ(error_.GetErrorReason(), 0u);
  EXPECT_EQ(access_.GetCalibrationLinearization(3, 0, size_, type_, &error_), nullptr);
  ExpectError(error_, kReasonNotFound, u"Profile:Calibration history entry - none");
  error_.Reset();
  EXPECT_EQ(access_.GetCalibrationInkLimit(3, 2, size_, type_, &error_), nullptr);
  EXPECT_EQ(std::u16string(error_.GetErrorCommentW()), u"Profile:Calibration history entry - none");
  EXPECT_EQ(size_, 2);
  EXPECT_EQ(access_.GetCalibrationInkLimit(4, 1, size_, type_, &error_), nullptr);
  EXPECT_EQ(std::u16string(error_.GetErrorCommentW()), u"Profile: Parameter error InkColorCode = 4, Entry type = 23");
}

}  // namespace
}  // namespace nvx::test
