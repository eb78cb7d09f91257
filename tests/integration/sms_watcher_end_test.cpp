// The end of the watcher, and its messages when it cannot start.
#include <csignal>

#include <time.h>

#include "watched_phone.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testkit::eventually;
using testkit::message;

class ARunningWatcher : public testkit::WatchedPhone {
 protected:
  ARunningWatcher() { startIntents(); }

  // How long it took to end, at most `limit`.
  std::chrono::steady_clock::duration ending(std::chrono::milliseconds limit = 20s) {
    const auto begin = std::chrono::steady_clock::now();
    watcher->signal(SIGTERM);
    const ProgramResult result = watcher->wait(limit);
    EXPECT_EQ(result.status, 0) << result.errors;
    return std::chrono::steady_clock::now() - begin;
  }
};

TEST_F(ARunningWatcher, EndsAtOnceWhenIdle) {
  startModemManager();
  startWatcher();
  EXPECT_LT(ending(), 2s);
}

TEST_F(ARunningWatcher, EndsAtOnceWithoutAModemManager) {
  startWatcher();
  EXPECT_LT(ending(), 2s);
}

TEST_F(ARunningWatcher, EndsSoonWhileAnIntentHangs) {
  intentsDo("hang");
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  ASSERT_FALSE(waitForHandedOn(1).empty());
  EXPECT_LT(ending(), 6s);  // it gives the intent 3 s
}

TEST_F(ARunningWatcher, ReceivesThePendingAnswerBeforeItEnds) {
  intentsDo("slow");
  startModemManager({message("1", "Paid 150")});
  startWatcher();
  ASSERT_FALSE(waitForHandedOn(1).empty());
  ending();
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), ElementsAre("Paid 150"));
}

TEST_F(ARunningWatcher, EndsSoonWhileModemManagerHangs) {
  startModemManager({message("1", "Paid 150"), message("2", "Paid 151")});
  modem(R"("do":"fault","method":"GetAll","fault":"hang")");
  startWatcher(30s, 1000ms);
  ASSERT_TRUE(eventually([&] { return modemCalls().find("GetAll") != std::string::npos; }));
  EXPECT_LT(ending(), 4s);
}

TEST_F(ARunningWatcher, EndsWithTheSessionBus) {
  startModemManager();
  startWatcher();
  phone.endBus();
  const ProgramResult result = watcher->wait(20s);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("kivo-sms-watcher: the session bus is gone\n"));
}

TEST_F(ARunningWatcher, EndsWithTheSystemBus) {
  startWatcher();
  systemBus.daemon().signal(SIGTERM);
  const ProgramResult result = watcher->wait(20s);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("kivo-sms-watcher: the system bus is gone\n"));
}

TEST_F(ARunningWatcher, RefusesASecondWatcher) {
  startWatcher();
  ChildProcess second({.program = linux_platform::programFolder() / "kivo-sms-watcher"});
  const ProgramResult result = second.wait(20s);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-sms-watcher: another program is app.kivo.SmsWatcher\n");
}

TEST_F(ARunningWatcher, UsesNoCpuWhileItWaits) {
  startModemManager();
  startWatcher();
  EXPECT_THAT(handedOnBeforeOneMore(), IsEmpty());
  endModemManager();
  clockid_t clock{};
  ASSERT_EQ(clock_getcpuclockid(watcher->id(), &clock), 0);
  const auto used = [clock] {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  };
  const auto before = used();
  std::this_thread::sleep_for(1s);
  // It looks at its settings ten times a second here.
  EXPECT_LT(used() - before, 300ms);
}

class AWatcherThatCannotStart : public testkit::WatchedPhone {
 protected:
  static ProgramResult run() {
    return linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-sms-watcher"}, 60s);
  }
};

TEST_F(AWatcherThatCannotStart, ReportsThatThereIsNoSystemBus) {
  const testkit::ScopedVariable nowhere("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/dev/null/bus");
  const ProgramResult result = run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-sms-watcher: there is no system bus\n");
}

TEST_F(AWatcherThatCannotStart, ReportsThatThereIsNoSessionBus) {
  const testkit::ScopedVariable nowhere("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null/bus");
  const ProgramResult result = run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-sms-watcher: there is no session bus\n");
}

TEST_F(AWatcherThatCannotStart, ReportsThatItCannotKeepItsRecord) {
  const testkit::ScopedVariable nowhere("XDG_DATA_HOME", "/dev/null/data");
  const ProgramResult result = run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "kivo-sms-watcher: cannot open the store: /dev/null/data cannot be created: Not a "
            "directory\nkivo-sms-watcher: the record of handled messages cannot be opened\n");
}

}  // namespace
}  // namespace kivo
