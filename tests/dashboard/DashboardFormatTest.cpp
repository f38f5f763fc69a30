#include <gtest/gtest.h>

#include "dashboard/DashboardFormat.h"

namespace {

using halcyra::dashboard::formatNetworkRate;
using halcyra::dashboard::formatTimeRemaining;

TEST(DashboardFormat, TimeRemainingSwitchesToHoursAtSixtyMinutes) {
  EXPECT_EQ(formatTimeRemaining(59, false), "59m remaining");
  EXPECT_EQ(formatTimeRemaining(60, false), "1h 0m remaining");
  EXPECT_EQ(formatTimeRemaining(125, true), "2h 5m until full");
}

TEST(DashboardFormat, NetworkRateIsNeverInBytesAndTurnsToMegabytesOnTheUnroundedValue) {
  EXPECT_EQ(formatNetworkRate(0), "0 KB/s");
  EXPECT_EQ(formatNetworkRate(1536), "2 KB/s");
  EXPECT_EQ(formatNetworkRate(1'048'575), "1024 KB/s");
  EXPECT_EQ(formatNetworkRate(1'048'576), "1.0 MB/s");
  EXPECT_EQ(formatNetworkRate(5'347'737), "5.1 MB/s");
}

} // namespace
