// The time that the runs of a process wait for a bus or a notification center that does not answer.
#include <csignal>

#include <gtest/gtest.h>

#include "feedback/expense_notifier.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "testkit/private_phone.h"
#include "testkit/silent_socket.h"
#include "testkit/task_runner.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::RunningTask;
using platform::UNUserNotificationCenter;
using Clock = std::chrono::steady_clock;

// The notification calls of a process that performs runs.
class AProcess {
 public:
  AProcess() { platform::ProcessWide<UNUserNotificationCenter>::install(center_); }

  // A run that posts and posts again.
  RunningTask startRun() { return testkit::executor().start(bus_.asOneRun(postAndAdd(&center_))); }
  Clock::duration run() {
    const Clock::time_point start = Clock::now();
    EXPECT_TRUE(startRun().waitFor(10s));
    return Clock::now() - start;
  }
  // A run that posts notifications with these titles.
  Clock::duration run(std::vector<std::string> titles) {
    const Clock::time_point start = Clock::now();
    testkit::await(bus_.asOneRun(postAll(std::move(titles))));
    return Clock::now() - start;
  }
  Clock::duration finish() {
    const Clock::time_point start = Clock::now();
    bus_.finish();
    return Clock::now() - start;
  }

 private:
  static platform::Task<void> postAndAdd(UNUserNotificationCenter* center) {
    co_await ExpenseNotifier::post("Title", "Body");
    co_await ExpenseNotifier::post("Title", "Body");
    platform::UNNotificationRequest request{
        .identifier = "one", .content = {}, .trigger = {.timeInterval = 0s}};
    const auto error = co_await center->addNotificationRequest(std::move(request));
    EXPECT_TRUE(error.has_value());
  }

  static platform::Task<void> postAll(std::vector<std::string> titles) {
    for (const std::string& title : titles) co_await ExpenseNotifier::post(title, "Body");
  }

  linux_platform::SessionBus bus_;
  linux_platform::BusUserNotificationCenter center_{bus_, "app.kivo.expenses.intents"};
};

void expectASecond(Clock::duration took) {
  EXPECT_GE(took, 900ms);
  EXPECT_LE(took, 1300ms);
}

// A center that answers its calls after these delays in seconds; slow_center.py defines the format.
class WithACenterThatAnswersSlowly : public testing::Test {
 protected:
  void startCenter(std::vector<std::string> pauses) {
    pauses.insert(pauses.begin(), KIVO_CLIENTS_FOLDER "/slow_center.py");
    center = std::make_unique<linux_platform::ChildProcess>(
        linux_platform::ProgramCall{.program = "/usr/bin/python3", .arguments = std::move(pauses)});
    ASSERT_TRUE(testkit::eventually(
        [this] { return phone.processOf("app.kivo.NotificationCenter").has_value(); }));
  }

  // Its output arrives through a pipe, a moment later than its answers.
  void expectAsked(const std::string& titles) const {
    testkit::eventually([&] { return center->outputSoFar().size() >= titles.size(); });
    EXPECT_EQ(center->outputSoFar(), titles);
  }

  testkit::PrivatePhone phone;
  std::unique_ptr<linux_platform::ChildProcess> center;
};

TEST_F(WithACenterThatAnswersSlowly, ARunAllowsEachCallASecond) {
  startCenter({"0.3"});
  AProcess process;
  process.run({"one", "two", "three", "four"});
  expectAsked("one\ntwo\nthree\nfour\n");
}

TEST_F(WithACenterThatAnswersSlowly, ARunMakesNoCallAfterATimeout) {
  startCenter({"0.4", "0.4", "0.4", "never", "0"});
  AProcess process;
  const auto took = process.run({"one", "two", "three", "four"});
  EXPECT_GE(took, 2200ms);
  EXPECT_LE(took, 2800ms);
  expectAsked("one\ntwo\n");
  EXPECT_LE(process.finish(), 200ms);
}

TEST_F(WithACenterThatAnswersSlowly, ALaterRunCallsTheCenterAgain) {
  startCenter({"never", "0"});
  AProcess process;
  process.run({"one"});
  process.run({"two"});
  expectAsked("two\n");
}

class WithACenterThatHangs : public testing::Test {
 protected:
  WithACenterThatHangs() { kill(center, SIGSTOP); }
  ~WithACenterThatHangs() override { kill(center, SIGKILL); }

  testkit::PrivatePhone phone;
  pid_t center = phone.startCenter();
};

TEST_F(WithACenterThatHangs, ARunAndItsExitWaitASecondInTotal) {
  AProcess process;
  expectASecond(process.run());
  EXPECT_LE(process.finish(), 200ms);
}

TEST_F(WithACenterThatHangs, ALaterRunHasItsOwnTimeout) {
  AProcess process;
  expectASecond(process.run());
  expectASecond(process.run());
}

TEST_F(WithACenterThatHangs, OverlappingRunsWaitInParallel) {
  AProcess process;
  const Clock::time_point start = Clock::now();
  RunningTask first = process.startRun();
  RunningTask second = process.startRun();
  EXPECT_TRUE(first.waitFor(10s));
  EXPECT_TRUE(second.waitFor(10s));
  expectASecond(Clock::now() - start);
}

TEST_F(WithACenterThatHangs, ARunAfterItsRecoveryGetsAnAnswer) {
  AProcess process;
  expectASecond(process.run());
  kill(center, SIGCONT);
  const Clock::time_point start = Clock::now();
  testkit::await(platform::ProcessWide<UNUserNotificationCenter>::object().notificationSettings());
  EXPECT_LE(Clock::now() - start, 500ms);
}

TEST(WithASilentBus, EachRunWaitsASecondInTotal) {
  const testkit::PrivateFolders folders;
  const testkit::SilentSocket silent(folders.home() / "silent");
  const testkit::ScopedVariable address("DBUS_SESSION_BUS_ADDRESS", silent.busAddress());
  AProcess process;
  expectASecond(process.run());
  expectASecond(process.run());
  EXPECT_LE(process.finish(), 200ms);
}

}  // namespace
}  // namespace kivo
