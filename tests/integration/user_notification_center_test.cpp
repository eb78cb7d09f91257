// The notification center as the extension calls it over the session bus.
#include <csignal>
#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "demo/notification_display.h"
#include "feedback/expense_notifier.h"
#include "platform/foundation/user_defaults.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "platform/user_notifications/un_user_notification_center.h"
#include "testkit/private_phone.h"
#include "testkit/silent_socket.h"
#include "testkit/task_runner.h"

namespace kivo {
namespace {

using linux_platform::BusUserNotificationCenter;
using linux_platform::SessionBus;
using platform::UNAuthorizationStatus;
using platform::UNUserNotificationCenter;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* askingBundle = "app.kivo.expenses.intents";

// The notification calls of a process that performs a run.
struct IntentRun {
  SessionBus bus;
  BusUserNotificationCenter center{bus, askingBundle};

  IntentRun() { platform::ProcessWide<UNUserNotificationCenter>::install(center); }

  UNAuthorizationStatus status() {
    return testkit::await(center.notificationSettings()).authorizationStatus;
  }
  static void post(const char* title = "Title", const char* body = "Body") {
    testkit::await(ExpenseNotifier::post(title, body));
  }
  std::optional<platform::NSError> add(std::string title = "Title") {
    platform::UNNotificationRequest request{
        .identifier = "one", .content = {}, .trigger = {.timeInterval = 0s}};
    request.content.title = std::move(title);
    return testkit::await(center.addNotificationRequest(request));
  }
};

template <typename Action>
Clock::duration timeOf(Action action) {
  const Clock::time_point start = Clock::now();
  action();
  return Clock::now() - start;
}

class ExpenseNotifications : public testing::Test {
 protected:
  void allow(UNAuthorizationStatus status) {
    ASSERT_TRUE(linux_platform::setAuthorizationStatus(askingBundle, status));
  }
  std::string pending() { return phone.callCenter("Pending", {askingBundle}).output; }

  testkit::PrivatePhone phone;
};

TEST_F(ExpenseNotifications, AreShownWhenAuthorized) {
  allow(UNAuthorizationStatus::authorized);
  NotificationDisplay display(phone.address());
  IntentRun run;
  run.post("💸 Expense Tracked", "E£85.50 at Café & Söhne (Groceries)");
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].summary, "💸 Expense Tracked");
  EXPECT_EQ(shown[0].body, "E£85.50 at Café & Söhne (Groceries)");
}

TEST_F(ExpenseNotifications, AreNotScheduledWithoutAuthorization) {
  using enum UNAuthorizationStatus;
  for (const UNAuthorizationStatus status : {notDetermined, denied, provisional, ephemeral}) {
    allow(status);
    IntentRun run;
    EXPECT_EQ(run.status(), status);
    run.post();
    EXPECT_EQ(pending(), "(@as [],)\n") << static_cast<int>(status);
  }
}

TEST_F(ExpenseNotifications, AreNotScheduledWhenThePermissionIsNotDetermined) {
  IntentRun run;
  EXPECT_EQ(run.status(), UNAuthorizationStatus::notDetermined);
  run.post();
  EXPECT_EQ(pending(), "(@as [],)\n");
}

TEST_F(ExpenseNotifications, AreShownTwiceForTwoEqualTexts) {
  allow(UNAuthorizationStatus::authorized);
  NotificationDisplay display(phone.address());
  IntentRun run;
  run.post("Same", "Words");
  run.post("Same", "Words");
  EXPECT_EQ(display.waitForShown(2, 10s).size(), 2U);
}

TEST_F(ExpenseNotifications, CanHaveEmptyTexts) {
  allow(UNAuthorizationStatus::authorized);
  NotificationDisplay display(phone.address());
  IntentRun run;
  run.post("", "");
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].summary + shown[0].body, "");
}

TEST_F(ExpenseNotifications, CarryOnlyTheDeepLink) {
  allow(UNAuthorizationStatus::authorized);
  IntentRun run;
  run.post();
  const auto suite = platform::UserDefaults::initWithSuiteName("app.kivo.NotificationCenter");
  EXPECT_THAT(suite->stringForKey("pendingNotifications").value_or("none"),
              HasSubstr(R"("userInfo":"[{\"key\":\"deepLink\",\"value\":\"kivo-expenses://\"}]")"));
}

TEST_F(ExpenseNotifications, AreShownWhenTheRunIsCancelled) {
  allow(UNAuthorizationStatus::authorized);
  NotificationDisplay display(phone.address());
  IntentRun run;
  auto task = testkit::executor().start(ExpenseNotifier::post("Title", "Body"));
  task.cancel();
  ASSERT_TRUE(task.waitFor(10s));
  EXPECT_EQ(display.waitForShown(1, 10s).size(), 1U);
}

TEST_F(ExpenseNotifications, HaveCharactersThatAreInvalidOnTheBusReplaced) {
  NotificationDisplay display(phone.address());
  IntentRun run;
  const std::string title("a\0b\xFF\xEF\xBF\xBE\xEF\xB7\x90\xED\xA0\x80z", 14);
  EXPECT_FALSE(run.add(title).has_value());
  const auto shown = display.waitForShown(1, 10s);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_THAT(shown[0].summary, testing::StartsWith("a\uFFFDb\uFFFD"));
  EXPECT_THAT(shown[0].summary, testing::EndsWith("\uFFFD\uFFFD\uFFFDz"));
}

TEST_F(ExpenseNotifications, ReportTheErrorWhenTheCenterRefusesThem) {
  allow(UNAuthorizationStatus::denied);
  IntentRun run;
  const auto error = run.add();
  ASSERT_TRUE(error.has_value());
  EXPECT_THAT(error->localizedDescription(), HasSubstr("AccessDenied"));
}

TEST_F(ExpenseNotifications, UseNoCpuWhileACancelledRunWaits) {
  const pid_t center = phone.startCenter();
  kill(center, SIGSTOP);
  IntentRun run;
  const std::clock_t before = std::clock();
  auto task = testkit::executor().start(ExpenseNotifier::post("Title", "Body"));
  task.cancel();
  const auto took = timeOf([&] { EXPECT_TRUE(task.waitFor(10s)); });
  EXPECT_GE(took, 900ms);
  EXPECT_LE(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.3);
  kill(center, SIGKILL);
}

TEST_F(ExpenseNotifications, FailAtOnceWhenTheCenterDies) {
  const pid_t center = phone.startCenter();
  kill(center, SIGSTOP);
  IntentRun run;
  auto task = testkit::executor().start(ExpenseNotifier::post("Title", "Body"));
  EXPECT_FALSE(task.waitFor(100ms));
  kill(center, SIGKILL);
  EXPECT_TRUE(task.waitFor(500ms));
  task.waitFor(10s);
}

TEST_F(ExpenseNotifications, FailAtOnceWhenTheBusEnds) {
  kill(phone.startCenter(), SIGSTOP);
  IntentRun run;
  auto task = testkit::executor().start(ExpenseNotifier::post("Title", "Body"));
  EXPECT_FALSE(task.waitFor(100ms));
  phone.daemon().signal(SIGKILL);
  EXPECT_TRUE(task.waitFor(500ms));
  task.waitFor(10s);
  EXPECT_TRUE(run.add().has_value());
}

// A center whose answers the test chooses.
class AMisbehavingCenter : public ExpenseNotifications {
 protected:
  void SetUp() override {
    ASSERT_TRUE(testkit::eventually([this] { return phone.processOf(service).has_value(); }));
  }

  void answers(const char* method, const char* in, const char* out, const char* python) {
    const auto result =
        phone.call(service, "/app/kivo/NotificationCenter", "org.freedesktop.DBus.Mock.AddMethod",
                   {"app.kivo.NotificationCenter1", method, in, out, python});
    ASSERT_EQ(result.status, 0) << result.errors;
  }

  static constexpr const char* service = "app.kivo.NotificationCenter";
  linux_platform::ChildProcess mock{
      {.program = "/usr/bin/python3",
       .arguments = {"-u", "-m", "dbusmock", service, "/app/kivo/NotificationCenter",
                     "app.kivo.NotificationCenter1"}}};
};

TEST_F(AMisbehavingCenter, CountsAsNotDeterminedWithAnInvalidStatus) {
  answers("AuthorizationStatus", "s", "s", "ret = 'authorized'");
  EXPECT_EQ(IntentRun().status(), UNAuthorizationStatus::notDetermined);
  answers("AuthorizationStatus", "s", "i", "ret = 5");
  EXPECT_EQ(IntentRun().status(), UNAuthorizationStatus::notDetermined);
  answers("AuthorizationStatus", "s", "i", "ret = -1");
  EXPECT_EQ(IntentRun().status(), UNAuthorizationStatus::notDetermined);
  answers("AuthorizationStatus", "s", "", "");
  EXPECT_EQ(IntentRun().status(), UNAuthorizationStatus::notDetermined);
  answers("AuthorizationStatus", "s", "i", "raise dbus.exceptions.DBusException('no')");
  EXPECT_EQ(IntentRun().status(), UNAuthorizationStatus::notDetermined);
  answers("AuthorizationStatus", "s", "i", "ret = 2");
  EXPECT_EQ(IntentRun().status(), UNAuthorizationStatus::authorized);
}

TEST_F(AMisbehavingCenter, CausesNoOutputWhenItRefusesANotification) {
  answers("AuthorizationStatus", "s", "i", "ret = 2");
  answers("Add", "ssa{sv}db", "",
          "raise dbus.exceptions.DBusException('no', name='org.example.Full')");
  IntentRun run;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  run.post();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  const auto error = run.add();
  ASSERT_TRUE(error.has_value());
  EXPECT_THAT(error->localizedDescription(), HasSubstr("org.example.Full"));
}

TEST(WithoutASessionBus, PermissionIsNotDeterminedWithoutAWait) {
  const testkit::PrivateFolders folders;
  const auto took = timeOf([] {
    IntentRun run;
    EXPECT_EQ(run.status(), UNAuthorizationStatus::notDetermined);
    EXPECT_TRUE(run.add().has_value());
    run.post();
  });
  EXPECT_LE(took, 300ms);
}

TEST(OnASilentBus, AProcessWithoutCallsEndsAtOnce) {
  const testkit::PrivateFolders folders;
  const testkit::SilentSocket silent(folders.home() / "silent");
  const testkit::ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", silent.busAddress());
  EXPECT_LE(timeOf([] { const SessionBus bus; }), 200ms);
  // The thread that connects is left behind; it must have read the environment before that changes.
  EXPECT_TRUE(silent.waitForConnection());
}

}  // namespace
}  // namespace kivo
