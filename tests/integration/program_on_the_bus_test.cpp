// The real program with the real notification center on a session bus, observed by the desktop and
// a widget.
#include <chrono>
#include <csignal>
#include <thread>

#include "demo/notification_display.h"
#include "demo/private_session_bus.h"
#include "feedback/amount_formatter.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "testkit/extension_program.h"
#include "testkit/reload_listener.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ProgramResult;
using testing::IsEmpty;
using testing::SizeIs;

class ARunOnTheBus : public testkit::ExtensionProgram {
 protected:
  ARunOnTheBus() {
    signIn();
    EXPECT_TRUE(linux_platform::setAuthorizationStatus(
        "app.kivo.expenses.intents", platform::UNAuthorizationStatus::authorized));
  }

  PrivateSessionBus bus{folders.home(),
                        {linux_platform::programFolder().parent_path() / "dbus-services"}};
  testkit::ScopedVariable address{"DBUS_SESSION_BUS_ADDRESS", bus.address()};
  NotificationDisplay display{bus.address()};
};

TEST_F(ARunOnTheBus, ShowsASavedExpenseAndReloadsTheWidget) {
  backend.answers(200, testkit::savedAnswer("expense"));
  testkit::ReloadListener widget;
  EXPECT_THAT(processSMS("Paid 150").output, testing::StartsWith("Tracked "));
  EXPECT_TRUE(widget.waitForReload(5s));
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_THAT(shown, SizeIs(1));
  EXPECT_EQ(shown[0].appName, "Kivo");
  EXPECT_EQ(shown[0].summary, "💸 Expense Tracked");
  EXPECT_EQ(shown[0].body, AmountFormatter::format(store(), 150) + " at Carrefour (Groceries)");
}

TEST_F(ARunOnTheBus, ShowsASavedIncome) {
  backend.answers(200, testkit::savedAnswer("income", "Salary"));
  EXPECT_THAT(processSMS("Salary").output, testing::StartsWith("Received "));
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_THAT(shown, SizeIs(1));
  EXPECT_EQ(shown[0].summary, "💰 Income Received");
  EXPECT_EQ(shown[0].body, AmountFormatter::format(store(), 150) + " from Carrefour (Salary)");
}

TEST_F(ARunOnTheBus, NotifiesWhenOfflineWithoutReloadingTheWidget) {
  backend.goAway();
  testkit::ReloadListener widget;
  EXPECT_EQ(processSMS("Paid 150").status, 0);
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_THAT(shown, SizeIs(1));
  EXPECT_EQ(shown[0].summary, "📡 Expense Saved Offline");
  EXPECT_EQ(shown[0].body, "Will be processed when you're back online");
  EXPECT_FALSE(widget.waitForReload(0s));
}

TEST_F(ARunOnTheBus, ShowsItsOwnTransactionBeforeTheDrainedOnes) {
  backend.goAway();
  EXPECT_EQ(processSMS("Paid 1").status, 0);
  backend.comeBack();
  backend.answers(200, testkit::savedAnswer("expense"));
  EXPECT_EQ(processSMS("Paid 2").status, 0);
  const auto shown = display.waitForShown(3, 10s);
  ASSERT_THAT(shown, SizeIs(3));
  EXPECT_EQ(shown[1].summary, "💸 Expense Tracked");
  EXPECT_EQ(shown[2].summary, "💸 Expense Tracked");
}

TEST_F(ARunOnTheBus, ShowsNothingWhenIgnoredOrDeclined) {
  EXPECT_EQ(processSMS("Your code is 1234").status, 0);
  backend.answers(200, R"({"saved":false,"reason":"declined"})");
  EXPECT_EQ(processSMS("Declined").status, 0);
  EXPECT_THAT(display.waitForShown(1, 2s), IsEmpty());
}

TEST_F(ARunOnTheBus, ShowsNothingWithoutPermissionAndAnswersTheSame) {
  for (const auto status :
       {platform::UNAuthorizationStatus::notDetermined, platform::UNAuthorizationStatus::denied,
        platform::UNAuthorizationStatus::provisional, platform::UNAuthorizationStatus::ephemeral}) {
    ASSERT_TRUE(linux_platform::setAuthorizationStatus("app.kivo.expenses.intents", status));
    backend.answers(200, testkit::savedAnswer("expense"));
    EXPECT_THAT(processSMS("Paid 150").output, testing::StartsWith("Tracked "));
  }
  EXPECT_THAT(display.waitForShown(1, 2s), IsEmpty());
}

TEST_F(ARunOnTheBus, WaitsASecondAtMostForAHangingBus) {
  backend.answers(200, testkit::savedAnswer("expense"));
  bus.daemon().signal(SIGSTOP);
  const auto before = std::chrono::steady_clock::now();
  const ProgramResult result = processSMS("Paid 150");
  const auto duration = std::chrono::steady_clock::now() - before;
  bus.daemon().signal(SIGCONT);
  EXPECT_THAT(result.output, testing::StartsWith("Tracked "));
  EXPECT_EQ(result.errors, "");
  EXPECT_LT(duration, 4s);  // one second, and what a slow machine needs
}

TEST_F(ARunOnTheBus, NotifiesAndReloadsWhenTheBusRecoversInTime) {
  backend.answers(200, testkit::savedAnswer("expense"));
  testkit::ReloadListener widget;
  bus.daemon().signal(SIGSTOP);
  std::thread thawing([this] {
    std::this_thread::sleep_for(300ms);
    bus.daemon().signal(SIGCONT);
  });
  EXPECT_THAT(processSMS("Paid 150").output, testing::StartsWith("Tracked "));
  thawing.join();
  EXPECT_TRUE(widget.waitForReload(5s));
  EXPECT_THAT(display.waitForShown(1, 10s), SizeIs(1));
}

}  // namespace
}  // namespace kivo
