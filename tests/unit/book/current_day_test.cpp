#include "book/current_day.h"

#include <chrono>

#include <gtest/gtest.h>

namespace kivo::book {
namespace {

using namespace std::chrono_literals;

platform::Moment noonOf(std::chrono::year_month_day day) {
  return platform::Moment(std::chrono::sys_days(day)) + 12h;
}

TEST(TheDayOfAMoment, IsThatOfTheCalendar) {
  EXPECT_EQ(dayOf(noonOf(2024y / 2 / 29)), money::Day::fromText("2024-02-29"));
  EXPECT_EQ(dayOf(noonOf(1969y / 12 / 31)), money::Day::fromText("1969-12-31"));
}

// 2^64 nanoseconds, 584 years, after a day of 2026.
TEST(TheDayOfAMoment, IsRightWhereNanosecondsEnd) {
  EXPECT_EQ(dayOf(noonOf(2610y / 12 / 1)), money::Day::fromText("2610-12-01"));
  EXPECT_EQ(dayOf(noonOf(9999y / 12 / 30)), money::Day::fromText("9999-12-30"));
}

TEST(TheDayOfAMoment, IsAbsentAfterTheYear9999) {
  EXPECT_EQ(dayOf(noonOf(12000y / 1 / 1)), std::nullopt);
}

}  // namespace
}  // namespace kivo::book
