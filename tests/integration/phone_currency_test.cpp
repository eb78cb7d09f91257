// `kivo-phone sign-in` with another currency than that of the widget's totals.
#include <chrono>
#include <string>

#include <gmock/gmock.h>

#include "feedback/widget_stats.h"
#include "platform/linux/process/child_process.h"
#include "store/shared_store.h"
#include "testkit/private_phone.h"

namespace kivo::testkit {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

class APhoneWithTotals : public testing::Test {
 protected:
  static ProgramCall phone(std::vector<std::string> arguments) {
    return {.program = linux_platform::programFolder() / "kivo-phone",
            .arguments = std::move(arguments)};
  }
  static std::string signIn(const std::string& currency) {
    return linux_platform::runProgram(phone({"sign-in", "--user-id", "me", "--url",
                                             "http://127.0.0.1:1", "--currency", currency}))
        .output;
  }
  static SharedStore open() { return SharedStore::open(appGroup).value(); }
  static std::string widget() { return linux_platform::runProgram(phone({"widget"})).output; }

  PrivatePhone phone_;
};

TEST_F(APhoneWithTotals, BeginsThemAtZeroInAnotherCurrency) {
  SharedStore store = open();
  WidgetStats::recordExpense(store, 1205.5);  // in EGP, since no other currency is stored
  EXPECT_THAT(signIn("USD"),
              HasSubstr("Signed in at http://127.0.0.1:1\nThe widget's totals were in "
                        "EGP; they begin at zero in USD.\n"));
  EXPECT_THAT(widget(), testing::StartsWith("Today          $0.00\nExpenses       0\n"
                                            "Running total  $0.00\n"));
  EXPECT_EQ(store.readText(StoreKeys::monthlyTotal), "0.0");
  EXPECT_EQ(store.readText(StoreKeys::todayDateKey), WidgetStats::today());
}

TEST_F(APhoneWithTotals, KeepsThemInTheSameCurrency) {
  SharedStore store = open();
  WidgetStats::recordExpense(store, 1205.5);
  for (const char* const same : {"EGP", "egp"}) {
    EXPECT_THAT(signIn(same), Not(HasSubstr("totals")));
    EXPECT_EQ(store.readText(StoreKeys::monthlyTotal), "1205.5");
    EXPECT_EQ(store.readText(StoreKeys::todayTotal), "1205.5");
  }
}

TEST_F(APhoneWithTotals, SaysNothingOfTotalsThatAreZero) {
  EXPECT_THAT(signIn("USD"), Not(HasSubstr("totals")));
  EXPECT_EQ(open().readText(StoreKeys::monthlyTotal), std::nullopt);
}

TEST_F(APhoneWithTotals, HasWidgetsReloadWhenTheyBeginAtZero) {
  SharedStore store = open();
  WidgetStats::recordExpense(store, 1205.5);
  ChildProcess signals({.program = "dbus-monitor",
                        .arguments = {"--session", "interface='app.kivo.WidgetCenter1'"}});
  const auto hears = [&] {
    return signals.outputSoFar().find("ReloadAllTimelines") != std::string::npos;
  };
  ASSERT_TRUE(eventually([&] { return !signals.outputSoFar().empty(); }));
  signIn("EGP");
  EXPECT_FALSE(hears());
  signIn("USD");
  EXPECT_TRUE(eventually(hears, 5s));
}

}  // namespace
}  // namespace kivo::testkit
