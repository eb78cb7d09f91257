#include "feedback/widget_stats.h"

#include <optional>

#include <gtest/gtest.h>

#include "testkit/test_phone.h"

namespace kivo {
namespace {

using testkit::ScopedVariable;
using testkit::utc;

struct Figures {
  std::optional<std::string> day;
  std::optional<std::string> total;
  std::optional<std::string> count;
  std::optional<std::string> running;

  bool operator==(const Figures&) const = default;
};

void PrintTo(const Figures& figures, std::ostream* out) {
  for (const auto& figure : {figures.day, figures.total, figures.count, figures.running}) {
    *out << figure.value_or("(none)") << " ";
  }
}

class WidgetFigures : public ::testing::Test {
 protected:
  void record(double amount) {
    SharedStore store = phone_.openStore();
    WidgetStats::recordExpense(store, amount);
  }
  void put(StoreKey key, std::string_view text) { phone_.put(key, text); }
  void beginToday() { put(StoreKeys::todayDateKey, "2026-01-31"); }
  Figures figures() {
    return {phone_.text(StoreKeys::todayDateKey), phone_.text(StoreKeys::todayTotal),
            phone_.text(StoreKeys::todayCount), phone_.text(StoreKeys::monthlyTotal)};
  }
  std::string totalAfterStored(std::string_view total) {
    beginToday();
    put(StoreKeys::todayTotal, total);
    record(1);
    return figures().total.value();
  }
  std::string countAfterStored(std::string_view count) {
    beginToday();
    put(StoreKeys::todayCount, count);
    record(1);
    return figures().count.value();
  }

  testkit::TestPhone phone_;
};

TEST_F(WidgetFigures, BeginWithTheFirstExpense) {
  record(150);
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "150.0", "1", "150.0"}));
}

TEST_F(WidgetFigures, AddUpOnTheSameDay) {
  record(150);
  record(25.5);
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "175.5", "2", "175.5"}));
}

TEST_F(WidgetFigures, ResetOnANewDayExceptTheRunningTotal) {
  record(150);
  record(25.5);
  phone_.clock.set(utc(2026, 2, 1, 8));
  record(10);
  EXPECT_EQ(figures(), (Figures{"2026-02-01", "10.0", "1", "185.5"})) << "new month included";
}

TEST_F(WidgetFigures, StayUnchangedUntilTheFirstExpenseOfTheDay) {
  record(150);
  phone_.clock.set(utc(2026, 2, 1, 8));
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "150.0", "1", "150.0"}));
}

TEST_F(WidgetFigures, KeepTheRunningTotalAcrossYears) {
  record(150);
  phone_.clock.set(utc(2027, 6, 15, 8));
  record(1);
  EXPECT_EQ(figures(), (Figures{"2027-06-15", "1.0", "1", "151.0"}));
}

TEST_F(WidgetFigures, ResetWhenTheClockIsSetBackADay) {
  record(150);
  phone_.clock.set(utc(2026, 1, 30, 8));
  record(1);
  EXPECT_EQ(figures(), (Figures{"2026-01-30", "1.0", "1", "151.0"}));
}

TEST_F(WidgetFigures, ChangeDayAtLocalMidnight) {
  const ScopedVariable zone("TZ", "Etc/GMT-2");
  phone_.clock.set(utc(2026, 1, 31, 21, 59, 59));
  record(1);
  phone_.clock.set(utc(2026, 1, 31, 22));
  record(2);
  EXPECT_EQ(figures(), (Figures{"2026-02-01", "2.0", "1", "3.0"}));
}

TEST_F(WidgetFigures, ResetWhenTheLocaleChangesTheWrittenDay) {
  record(1);
  const ScopedVariable locale("LC_ALL", "th_TH.UTF-8");
  record(2);
  EXPECT_EQ(figures(), (Figures{"2569-01-31", "2.0", "1", "3.0"}));
  record(3);
  EXPECT_EQ(figures(), (Figures{"2569-01-31", "5.0", "2", "6.0"}));
}

TEST_F(WidgetFigures, WriteTheDayInTheDigitsOfTheLocale) {
  const ScopedVariable locale("LC_ALL", "ar_EG.UTF-8");
  record(1);
  record(1);
  EXPECT_EQ(figures(), (Figures{"٢٠٢٦-٠١-٣١", "2.0", "2", "2.0"}));
}

TEST_F(WidgetFigures, SubtractANegativeAmountAndCountIt) {
  record(150);
  record(-200.5);
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "-50.5", "2", "-50.5"}));
}

TEST_F(WidgetFigures, AreNotRoundedToTheDecimalsOfTheCurrency) {
  record(0.1);
  record(0.2);
  EXPECT_EQ(figures().total, "0.30000000000000004");
  EXPECT_EQ(figures().running, "0.30000000000000004");
}

TEST_F(WidgetFigures, HaveAnExponentWhenTheyAreHuge) {
  record(1e16);
  EXPECT_EQ(figures().total, "1e+16");
  record(0);
  EXPECT_EQ(figures().total, "1e+16") << "and are read back from it";
}

TEST_F(WidgetFigures, ReadATotalWithBlanksAsZero) {
  EXPECT_EQ(totalAfterStored(" 100.0"), "1.0");
  EXPECT_EQ(totalAfterStored("100.0 "), "1.0");
  EXPECT_EQ(totalAfterStored("\n100.0"), "1.0");
  EXPECT_EQ(totalAfterStored("100.0\n"), "1.0");
}

TEST_F(WidgetFigures, ReadATotalWithAnExponent) {
  EXPECT_EQ(totalAfterStored("1e3"), "1001.0");
  EXPECT_EQ(totalAfterStored("0x10"), "17.0");
}

TEST_F(WidgetFigures, ReadAnInvalidTotalAsZero) {
  EXPECT_EQ(totalAfterStored(""), "1.0");
  EXPECT_EQ(totalAfterStored("abc"), "1.0");
  EXPECT_EQ(totalAfterStored("12,5"), "1.0");
  EXPECT_EQ(totalAfterStored("12.5x"), "1.0");
}

TEST_F(WidgetFigures, ReadADecimalPointInEveryLocale) {
  const ScopedVariable locale("LC_ALL", "de_DE.UTF-8");
  EXPECT_EQ(totalAfterStored("12.5"), "13.5");
}

TEST_F(WidgetFigures, ReadTheRunningTotalByTheSameRules) {
  put(StoreKeys::monthlyTotal, "1e3");
  record(1);
  EXPECT_EQ(figures().running, "1001.0");
  put(StoreKeys::monthlyTotal, "1e3 ");
  record(1);
  EXPECT_EQ(figures().running, "1.0");
}

TEST_F(WidgetFigures, ReadASignedCount) {
  EXPECT_EQ(countAfterStored("+5"), "6");
  EXPECT_EQ(countAfterStored("-5"), "-4");
}

TEST_F(WidgetFigures, CountFromOneWhenTheStoredCountIsInvalid) {
  for (const auto* const text : {"abc", "", "+", " 5", "5 ", "5.0", "9223372036854775808"}) {
    EXPECT_EQ(countAfterStored(text), "1") << text;
  }
}

TEST_F(WidgetFigures, CountUpToTheLargestNumber) {
  EXPECT_EQ(countAfterStored("9223372036854775806"), "9223372036854775807");
}

TEST_F(WidgetFigures, StartAMissingTotalAtZeroAndKeepTheCount) {
  beginToday();
  put(StoreKeys::todayCount, "4");
  record(7);
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "7.0", "5", "7.0"}));
}

TEST_F(WidgetFigures, StartAMissingCountAtOneAndKeepTheTotal) {
  beginToday();
  put(StoreKeys::todayTotal, "4.5");
  record(7);
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "11.5", "1", "7.0"}));
}

TEST_F(WidgetFigures, CountAsMissingWhenTheyAreStoredAsNumbers) {
  beginToday();
  phone_.put(StoreKeys::todayTotal, 100.0);
  phone_.put(StoreKeys::todayCount, 5.0);
  phone_.put(StoreKeys::monthlyTotal, 100.0);
  record(1);
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "1.0", "1", "1.0"}));
}

TEST_F(WidgetFigures, BeginAtZeroAgainWhenRestarted) {
  SharedStore store = phone_.openStore();
  EXPECT_FALSE(WidgetStats::anyIsCounted(store));
  WidgetStats::recordExpense(store, 150);
  EXPECT_TRUE(WidgetStats::anyIsCounted(store));
  WidgetStats::restart(store);
  EXPECT_FALSE(WidgetStats::anyIsCounted(store));
  store.synchronize();
  EXPECT_EQ(figures(), (Figures{"2026-01-31", "0.0", "0", "0.0"}));
}

TEST_F(WidgetFigures, DoNotReloadTheWidget) {
  record(1);
  EXPECT_EQ(phone_.widget.reloads(), 0);
}

TEST_F(WidgetFigures, ChangeNoOtherKey) {
  phone_.put(StoreKeys::smsQueueDrainLock, 12.5);
  auto expected = phone_.contents();
  record(1);
  expected["todayDateKey"] = "2026-01-31";
  expected["todayTotal"] = "1.0";
  expected["todayCount"] = "1";
  expected["monthlyTotal"] = "1.0";
  EXPECT_EQ(phone_.contents(), expected);
}

TEST_F(WidgetFigures, LoseAnExpenseWhenTwoRunsWriteAtOnce) {
  SharedStore early = phone_.openStore();
  WidgetStats::recordExpense(early, 1);
  early.writeText(StoreKeys::todayTotal, "101.0");  // as a run that has read 1.0 and adds 100
  record(5);
  EXPECT_EQ(figures().total, "6.0");
  early.synchronize();
  EXPECT_EQ(figures().total, "101.0") << "the later write wins";
}

using WidgetFiguresDeathTest = WidgetFigures;

TEST_F(WidgetFiguresDeathTest, AbortWhenTheCountOverflows) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const ScopedVariable inside("TMPDIR", phone_.folders.home().string());
  beginToday();
  put(StoreKeys::todayCount, "9223372036854775807");
  EXPECT_DEATH(record(1), "^fatal: today's number of expenses");
}

}  // namespace
}  // namespace kivo
