#include "platform/clock.h"

#include "support/environment.h"

#include <gtest/gtest.h>

#include <ctime>
#include <tuple>

namespace nvx::test {
namespace {

using platform::CurrentTime;
using platform::LocalTime;

TEST(Clock, SourceDateEpochStandsForTheClock) {
  const ScopedVariable epoch("SOURCE_DATE_EPOCH", "1700000000");
  EXPECT_EQ(CurrentTime(), 1700000000);
  for (const char* const noNumber : {"", "17x", " 17", "99999999999999999999"}) {
    const ScopedVariable broken("SOURCE_DATE_EPOCH", noNumber);
    EXPECT_NEAR(static_cast<double>(CurrentTime()), static_cast<double>(std::time(nullptr)), 2);
  }
}

TEST(Clock, LocalTimeFollowsTheZone) {
  const std::int64_t time = 1'703'980'799;  // 2023-12-30 23:59:59 UTC
  for (const auto& [zone, day, hour] : {std::tuple{"UTC", 30, 23}, {"JST-9", 31, 8}, {"EST5", 30, 18}}) {
    const ScopedVariable variable("TZ", zone);
    const auto local = LocalTime(time);
    ASSERT_TRUE(local);
    EXPECT_EQ(std::tuple(local->wYear, local->wMonth, local->wDay, local->wDayOfWeek), std::tuple(2023, 12, day, 0));
    EXPECT_EQ(std::tuple(local->wHour, local->wMinute, local->wSecond), std::tuple(hour, 59, 59));
  }
  EXPECT_FALSE(LocalTime(-1));
  EXPECT_TRUE(LocalTime(32'535'215'999));
  EXPECT_FALSE(LocalTime(32'535'216'000));
}

}  // namespace
}  // namespace nvx::test
