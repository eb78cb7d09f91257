// The real program kivo-phone on a private bus.
#include <csignal>

#include <gtest/gtest.h>

#include "feedback/widget_stats.h"
#include "phone_program.h"
#include "platform/linux/process/child_process.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"
#include "testkit/private_phone.h"

namespace kivo {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using testkit::eventually;

class APhoneOnABus : public testing::Test {
 protected:
  static ProgramCall watch() {
    return {.program = phoneProgram(), .arguments = {"widget", "--watch"}};
  }
  // Any program may ask the widgets to reload.
  void askForReload() {
    const ProgramResult result = linux_platform::runProgram(
        {.program = "gdbus",
         .arguments = {"emit", "--session", "--object-path", "/app/kivo/WidgetCenter", "--signal",
                       "app.kivo.WidgetCenter1.ReloadAllTimelines"}});
    ASSERT_EQ(result.status, 0) << result.errors;
  }
  static void spend(double amount) {
    SharedStore store = SharedStore::open(appGroup).value();
    store.writeText(StoreKeys::currency, "USD");
    WidgetStats::recordExpense(store, amount);
  }
  static bool shows(const ChildProcess& watching, const std::string& text) {
    return eventually([&] { return watching.outputSoFar().find(text) != std::string::npos; });
  }

  testkit::PrivatePhone phone;
};

TEST_F(APhoneOnABus, SetsTheNotificationPermission) {
  const std::vector<std::pair<std::string, std::string>> statuses{{"authorized", "(2,)\n"},
                                                                  {"denied", "(1,)\n"},
                                                                  {"not-determined", "(0,)\n"},
                                                                  {"provisional", "(3,)\n"},
                                                                  {"ephemeral", "(4,)\n"}};
  for (const auto& [word, answer] : statuses) {
    const ProgramResult result = linux_platform::runProgram(
        {.program = phoneProgram(), .arguments = {"notifications", word}});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "Notifications: " + word + "\n");
    EXPECT_EQ(phone.callCenter("AuthorizationStatus", {"app.kivo.expenses.intents"}).output,
              answer);
  }
}

TEST_F(APhoneOnABus, RedrawsTheWidgetOnAReload) {
  spend(5);
  ChildProcess watching(watch());
  ASSERT_TRUE(shows(watching, "Today          $5.00\nExpenses       1\n"));
  spend(2.5);
  askForReload();
  EXPECT_TRUE(shows(watching, "Today          $7.50\nExpenses       2\n"));
  watching.signal(SIGINT);
  EXPECT_EQ(watching.wait(std::chrono::seconds(10)).status, 0);
}

TEST_F(APhoneOnABus, RedrawsTheWidgetWhenAMessageIsQueuedWithoutAReload) {
  spend(5);
  ChildProcess watching(watch());
  ASSERT_TRUE(shows(watching, "Waiting        0\nSigned in      no\n"));
  SharedStore store = SharedStore::open(appGroup).value();
  PendingSmsQueue::enqueue({.id = "A",
                            .smsText = "Paid EGP 12 at Cafe",
                            .expenseDate = "2026-01-31",
                            .queuedAt = "2026-01-31T09:00:00Z",
                            .retryCount = 0,
                            .source = "sms"},
                           store);
  EXPECT_TRUE(shows(watching, "Waiting        1\nSigned in      no\n"));
}

TEST_F(APhoneOnABus, RedrawsTheWidgetOnASignIn) {
  ChildProcess watching(watch());
  ASSERT_TRUE(shows(watching, "Signed in      no\n"));
  linux_platform::runProgram({.program = phoneProgram(),
                              .arguments = {"sign-in", "--user-id", "42", "--url", "http://x"}});
  EXPECT_TRUE(shows(watching, "Signed in      yes\n"));
}

TEST_F(APhoneOnABus, EndsAWatchWithoutAnErrorOnASignal) {
  for (const int signal : {SIGINT, SIGTERM}) {
    ChildProcess watching(watch());
    ASSERT_TRUE(shows(watching, "Running total"));
    watching.signal(signal);
    const ProgramResult result = watching.wait(std::chrono::seconds(10));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
  }
}

TEST_F(APhoneOnABus, EndsAWatchWhenTheBusEnds) {
  ChildProcess watching(watch());
  ASSERT_TRUE(shows(watching, "Running total"));
  phone.endBus();
  const ProgramResult result = watching.wait(std::chrono::seconds(10));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-phone: the session bus is gone\n");
}

}  // namespace
}  // namespace kivo
