#include "money/day.h"

#include <gtest/gtest.h>

namespace kivo::money {
namespace {

TEST(ADay, IsReadFromItsTextAlone) {
  EXPECT_EQ(Day::fromText("2026-11-21")->text(), "2026-11-21");
  EXPECT_EQ(Day::fromText("2028-02-29")->text(), "2028-02-29");
  EXPECT_EQ(Day::fromText("0000-01-01")->text(), "0000-01-01");
  EXPECT_EQ(Day::fromText("9999-12-31")->text(), "9999-12-31");
  for (const char* text : {"", "2026-11", "2026-11-7", "2026-11-7x", "2026-11-31", "2026-02-29",
                           "2026-00-10", "2026-13-01", "2026-11-00", "2026/11/21", "2026-1-021",
                           "+026-11-21", "2026-11-21 ", "2o26-11-21"}) {
    EXPECT_FALSE(Day::fromText(text)) << text;
  }
}

TEST(ADay, HasItsMonthAndItsNumberInIt) {
  constexpr Day day = "2026-11-05";
  EXPECT_EQ(day.month().text(), "2026-11");
  EXPECT_EQ(day.number(), 5);
}

TEST(ADay, CountsBackOverMonthsAndYears) {
  EXPECT_EQ(Day("2026-11-21").before(0), Day("2026-11-21"));
  EXPECT_EQ(Day("2026-11-21").before(30), Day("2026-10-22"));
  EXPECT_EQ(Day("2028-03-01").before(1), Day("2028-02-29"));
  EXPECT_EQ(Day("2026-01-01").before(366), Day("2024-12-31"));
}

TEST(ADay, ComesAfterThoseOfEarlierMonthsAndYears) {
  EXPECT_LT(Day("2026-11-30"), Day("2026-12-01"));
  EXPECT_LT(Day("2025-12-31"), Day("2026-01-01"));
}

TEST(AMonth, IsReadFromItsTextAlone) {
  EXPECT_EQ(Month::fromText("2026-02")->text(), "2026-02");
  for (const char* text : {"", "2026", "2026-2", "2026-00", "2026-13", "2026-02-01", "2026-02 "}) {
    EXPECT_FALSE(Month::fromText(text)) << text;
  }
}

TEST(AMonth, HasNamesForPeople) {
  EXPECT_EQ(Month("2026-01").name(), "January 2026");
  EXPECT_EQ(Month("2026-12").name(), "December 2026");
  EXPECT_EQ(Month("0800-05").name(), "May 0800");
  EXPECT_EQ(Month("2026-09").shortName(), "Sep");
}

TEST(AMonth, FollowsOthersOverTheEndOfAYear) {
  EXPECT_EQ(Month("2026-01").before(), Month("2025-12"));
  EXPECT_EQ(Month("2026-11").before(11), Month("2025-12"));
  EXPECT_EQ(Month("2026-11").before(0), Month("2026-11"));
}

TEST(AMonth, KnowsItsDays) {
  EXPECT_EQ(Month("2026-02").days(), 28);
  EXPECT_EQ(Month("2028-02").days(), 29);
  EXPECT_EQ(Month("2026-11").days(), 30);
}

TEST(APeriod, BeginsAndEndsWithItsMonths) {
  const Period one = Period::of(Month("2028-02"));
  EXPECT_EQ(one.first, Day("2028-02-01"));
  EXPECT_EQ(one.last, Day("2028-02-29"));
  const Period several = Period::of(Month("2025-12"), Month("2026-11"));
  EXPECT_EQ(several.first, Day("2025-12-01"));
  EXPECT_EQ(several.last, Day("2026-11-30"));
}

TEST(ADay, CountsTheDaysSinceAnother) {
  EXPECT_EQ(Day("2028-03-01").daysSince("2028-02-28"), 2);
  EXPECT_EQ(Day("2026-12-31").daysSince("2027-01-01"), -1);
}

TEST(ADay, HasTheSameNumberInTheNextMonthOrTheLastOne) {
  EXPECT_EQ(Day("2026-12-05").inNextMonth(5), Day("2027-01-05"));
  EXPECT_EQ(Day("2027-01-31").inNextMonth(31), Day("2027-02-28"));
  EXPECT_EQ(Day("2028-01-31").inNextMonth(31), Day("2028-02-29"));
  EXPECT_EQ(Day("2027-02-28").inNextMonth(31), Day("2027-03-31"));
}

TEST(AYear, IsReadFromFourDigitsAlone) {
  EXPECT_EQ(Year::fromText("2026")->text(), "2026");
  EXPECT_EQ(Year::fromText("0000")->text(), "0000");
  EXPECT_EQ(Year::fromText("9999")->before().text(), "9998");
  for (const char* text : {"", "26", "20266", "2026-", "-026", "+026", "2o26", " 2026", "٢٠٢٦"}) {
    EXPECT_FALSE(Year::fromText(text)) << text;
  }
}

TEST(AYear, HasItsTwelveMonths) {
  const auto months = Year(2028).months();
  ASSERT_EQ(months.size(), 12U);
  EXPECT_EQ(months.front(), Month("2028-01"));
  EXPECT_EQ(months[1].days(), 29);
  EXPECT_EQ(months.back(), Month("2028-12"));
  EXPECT_EQ(Month("2028-02").year(), Year(2028));
  EXPECT_EQ(Period::of(Year(2028)).last, Day("2028-12-31"));
}

}  // namespace
}  // namespace kivo::money
