#include "phone/widget_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feedback/widget_stats.h"
#include "platform/foundation/date.h"
#include "testkit/private_folders.h"

namespace kivo {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using WidgetView::Figures;
using namespace std::chrono_literals;

platform::Moment january31() { return std::chrono::sys_days(2026y / 1 / 31) + 9h; }
platform::Moment february1() { return std::chrono::sys_days(2026y / 2 / 1) + 9h; }

class AWidget : public testing::Test {
 protected:
  AWidget() { platform::Date::setClock(january31); }
  ~AWidget() override { platform::Date::setClock(nullptr); }

  testkit::PrivateFolders folders_;
  SharedStore store_ = SharedStore::open(appGroup).value();
};

TEST_F(AWidget, ShowsZerosInPoundsOnAnEmptyStore) {
  EXPECT_EQ(WidgetView::read(store_), (WidgetFigures{"EGP\u00a00.00", 0, "EGP\u00a00.00"}));
}

TEST_F(AWidget, ShowsTheFiguresOfTodayInTheStoredCurrency) {
  store_.writeText(StoreKeys::currency, "USD");
  WidgetStats::recordExpense(store_, 1200);
  WidgetStats::recordExpense(store_, 25.5);
  EXPECT_EQ(WidgetView::read(store_), (WidgetFigures{"$1,225.50", 2, "$1,225.50"}));
}

TEST_F(AWidget, ResetsOnANewDayExceptTheRunningTotal) {
  store_.writeText(StoreKeys::currency, "USD");
  WidgetStats::recordExpense(store_, 150);
  platform::Date::setClock(february1);
  EXPECT_EQ(WidgetView::read(store_), (WidgetFigures{"$0.00", 0, "$150.00"}));
}

TEST_F(AWidget, ShowsNegativeTotalsAsNegative) {
  store_.writeText(StoreKeys::currency, "USD");
  WidgetStats::recordExpense(store_, -20);
  EXPECT_EQ(WidgetView::read(store_), (WidgetFigures{"-$20.00", 1, "-$20.00"}));
}

TEST_F(AWidget, ReadsInvalidFiguresAsZero) {
  store_.writeText(StoreKeys::currency, "USD");
  store_.writeText(StoreKeys::todayDateKey, WidgetStats::today());
  store_.writeText(StoreKeys::todayTotal, " 5");
  store_.writeText(StoreKeys::todayCount, "many");
  store_.writeText(StoreKeys::monthlyTotal, "");
  EXPECT_EQ(WidgetView::read(store_), (WidgetFigures{"$0.00", 0, "$0.00"}));
}

TEST_F(AWidget, CountsTheQueuedMessages) {
  EXPECT_EQ(WidgetView::read(store_).waitingMessages, 0);
  store_.writeText(StoreKeys::pendingSmsQueueCount, "3");
  EXPECT_EQ(WidgetView::read(store_).waitingMessages, 3);
  for (const char* const unreadable : {"", "many", "-1"}) {
    store_.writeText(StoreKeys::pendingSmsQueueCount, unreadable);
    EXPECT_EQ(WidgetView::read(store_).waitingMessages, 0) << unreadable;
  }
}

TEST_F(AWidget, NeedsUserAndBackendToBeSignedIn) {
  EXPECT_FALSE(WidgetView::read(store_).signedIn);
  store_.writeText(StoreKeys::userId, "42");
  EXPECT_FALSE(WidgetView::read(store_).signedIn);
  store_.writeText(StoreKeys::supabaseUrl, "https://backend.example");
  EXPECT_TRUE(WidgetView::read(store_).signedIn);
  store_.writeText(StoreKeys::userId, "");
  EXPECT_FALSE(WidgetView::read(store_).signedIn);
}

TEST_F(AWidget, IsAFrameOfEqualLinesOnATerminal) {
  EXPECT_EQ(WidgetView::asBox({"$5.00", 1, "$1,205.00", 0, true}, Figures::plain),
            "╭──────────────────────────╮\n"
            "│ Kivo · today             │\n"
            "│                          │\n"
            "│ $5.00                    │\n"
            "│ 1 expense                │\n"
            "│                          │\n"
            "│ Running total  $1,205.00 │\n"
            "╰──────────────────────────╯\n");
}

TEST_F(AWidget, HasNoBidirectionalControls) {
  const std::string box = WidgetView::asBox({"\u200f٥٫٠٠ ج.م.\u200f", 1, "\u202e5", 0, true},
                                            WidgetView::Figures::plain);
  EXPECT_NE(box.find("│ ٥٫٠٠ ج.م.                │\n"), std::string::npos) << box;
  EXPECT_NE(box.find("│ Running total  \\u202e5   │\n"), std::string::npos) << box;
}

TEST_F(AWidget, GrowsWithTheWidthOfItsFigures) {
  EXPECT_EQ(WidgetView::asBox({"د.إ", 0, "$1,234,567,890.00", 0, true}, Figures::plain),
            "╭──────────────────────────────────╮\n"
            "│ Kivo · today                     │\n"
            "│                                  │\n"
            "│ د.إ                              │\n"
            "│ 0 expenses                       │\n"
            "│                                  │\n"
            "│ Running total  $1,234,567,890.00 │\n"
            "╰──────────────────────────────────╯\n");
}

TEST_F(AWidget, ShowsItsFiguresInBold) {
  EXPECT_EQ(WidgetView::asBox({"$5.00", 1, "$1,205.00", 0, true}, Figures::bold),
            "╭──────────────────────────╮\n"
            "│ Kivo · today             │\n"
            "│                          │\n"
            "│ \x1b[1m$5.00\x1b[0m                    │\n"
            "│ 1 expense                │\n"
            "│                          │\n"
            "│ Running total  \x1b[1m$1,205.00\x1b[0m │\n"
            "╰──────────────────────────╯\n");
}

TEST_F(AWidget, ShowsThatMessagesWait) {
  EXPECT_THAT(WidgetView::asBox({"$5.00", 1, "$5.00", 3, true}, Figures::plain),
              EndsWith("│ Running total  $5.00       │\n"
                       "│                            │\n"
                       "│ 3 messages wait to be sent │\n"
                       "╰────────────────────────────╯\n"));
  EXPECT_THAT(WidgetView::asBox({"$5.00", 1, "$5.00", 1, true}, Figures::plain),
              HasSubstr("│ 1 message waits to be sent │\n"));
}

TEST_F(AWidget, ShowsTheMonthOfTheLedgerAndThatMessagesNeedALook) {
  const auto box = [](std::int64_t toReview) {
    return WidgetView::asBox(
        {"$5.00", 1, "$1,205.00", 0, true, LedgerMonth{"$80.00", "$5.00", 1, toReview}},
        Figures::plain);
  };
  EXPECT_EQ(box(2),
            "╭──────────────────────────╮\n"
            "│ Kivo · today             │\n"
            "│                          │\n"
            "│ $5.00                    │\n"
            "│ 1 expense                │\n"
            "│                          │\n"
            "│ This month     $80.00    │\n"
            "│ Running total  $1,205.00 │\n"
            "│                          │\n"
            "│ 2 messages need a look   │\n"
            "╰──────────────────────────╯\n");
  EXPECT_THAT(box(1), HasSubstr("│ 1 message needs a look   │\n"));
  EXPECT_THAT(box(0), EndsWith("│ Running total  $1,205.00 │\n╰──────────────────────────╯\n"));
}

TEST_F(AWidget, TakesAllButTheRunningTotalFromTheBook) {
  WidgetFigures figures{"$1,200.00", 7, "$1,205.00", 0, true};
  WidgetView::takeFromBook(figures, LedgerMonth{"$240.00", "$20.00", 1, 0});
  EXPECT_EQ(WidgetView::asLines(figures),
            "Today          $20.00\nExpenses       1\nRunning total  $1,205.00\n"
            "Waiting        0\nSigned in      yes\nThis month     $240.00\nTo review      0\n");
}

TEST_F(AWidget, ShowsNoFigureOfTodayWhenTheBookCannotBeRead) {
  WidgetFigures figures{"$1,200.00", 7, "$1,205.00", 0, true};
  WidgetView::takeFromBook(figures, std::nullopt);
  EXPECT_EQ(WidgetView::asLines(figures),
            "Today          unknown\nExpenses       unknown\nRunning total  $1,205.00\n"
            "Waiting        0\nSigned in      yes\n");
  EXPECT_EQ(WidgetView::asBox(figures, Figures::plain),
            "╭──────────────────────────╮\n"
            "│ Kivo · today             │\n"
            "│                          │\n"
            "│ unknown                  │\n"
            "│                          │\n"
            "│ Running total  $1,205.00 │\n"
            "╰──────────────────────────╯\n");
}

TEST_F(AWidget, ShowsHowToSignInWhenSignedOut) {
  EXPECT_THAT(WidgetView::asBox({"$5.00", 1, "$5.00", 0, false}, Figures::plain),
              EndsWith("│ Running total  $5.00      │\n"
                       "│                           │\n"
                       "│ Not signed in; see        │\n"
                       "│ kivo-phone sign-in --help │\n"
                       "╰───────────────────────────╯\n"));
}

TEST_F(AWidget, IsPlainLinesWithoutATerminal) {
  EXPECT_EQ(WidgetView::asLines({"$5.00", 1, "$12.00", 3, true}),
            "Today          $5.00\n"
            "Expenses       1\n"
            "Running total  $12.00\n"
            "Waiting        3\n"
            "Signed in      yes\n");
  EXPECT_THAT(WidgetView::asLines({"$5.00", 1, "$12.00", 0, false}),
              EndsWith("Waiting        0\nSigned in      no\n"));
  EXPECT_THAT(
      WidgetView::asLines({"$5.00", 1, "$12.00", 0, true, LedgerMonth{"$80.00", "$5.00", 1, 2}}),
      EndsWith("Signed in      yes\nThis month     $80.00\nTo review      2\n"));
}

}  // namespace
}  // namespace kivo
