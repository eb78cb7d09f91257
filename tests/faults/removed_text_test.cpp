// A text that left the queue, or was shown, is in no file any more: after the real programs, while
// another process has the store open, and after a kill at any system call.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "demo/notification_display.h"
#include "testkit/extension_program.h"
#include "testkit/private_phone.h"
#include "testkit/stored_bytes.h"

namespace kivo {
namespace {

namespace fs = std::filesystem;
using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* message = "Your card was charged MARKAMOUNT 7731.19 at MARKMERCHANT";

// Another program that has the database open, so that the last connection is not closed, and that
// is in the middle of a read when `statement` begins one. Until its end.
class Holder {
 public:
  Holder(const fs::path& file, const std::string& statement)
      : program_({.program = "python3",
                  .arguments = {"-c",
                                "import sqlite3, sys, time\n"
                                "database = sqlite3.connect(sys.argv[1], isolation_level=None)\n"
                                "for statement in sys.argv[2].split(';'):\n"
                                "    database.execute(statement).fetchall()\n"
                                "print('holds', flush=True)\n"
                                "time.sleep(60)\n",
                                file.string(), statement}}) {
    EXPECT_TRUE(testkit::eventually([this] { return program_.outputSoFar() == "holds\n"; }));
  }
  void end() {
    program_.signal(SIGKILL);
    program_.wait();
  }

 private:
  linux_platform::ChildProcess program_;
};

constexpr const char* openOnly = "SELECT count(*) FROM defaults";
constexpr const char* inTheMiddleOfARead = "BEGIN; SELECT count(*) FROM defaults";

class ADrainedText : public testkit::ExtensionProgram {
 protected:
  [[nodiscard]] std::string stored() const {
    return testkit::bytesIn(folders.storeFile().parent_path());
  }

  void queueMessage() {
    signIn();
    backend.goAway();
    ASSERT_THAT(processSMS(message).output, HasSubstr("Saved offline"));
    ASSERT_THAT(stored(), HasSubstr("MARK"));
    backend.comeBack();
    backend.answers(200, testkit::savedAnswer("expense"));
  }

  void freeLock() {
    SharedStore opened = store();
    opened.writeFloat(StoreKeys::smsQueueDrainLock, 0);
    opened.synchronize();
  }

  void drain() { ASSERT_THAT(processSMS("Paid 150").output, HasSubstr("Tracked")); }
};

TEST_F(ADrainedText, IsInNoFile) {
  queueMessage();
  drain();
  EXPECT_THAT(queue(), IsEmpty());
  EXPECT_THAT(stored(), Not(HasSubstr("MARK")));
}

TEST_F(ADrainedText, IsInNoFileWhileAnotherProcessHasTheStoreOpen) {
  signIn();
  const Holder other(folders.storeFile(), openOnly);
  queueMessage();
  drain();
  EXPECT_THAT(stored(), Not(HasSubstr("MARK")));
}

TEST_F(ADrainedText, IsInNoFileAfterTheRunThatFollowsALongRead) {
  queueMessage();
  const Holder stays(folders.storeFile(), openOnly);
  Holder other(folders.storeFile(), inTheMiddleOfARead);
  const auto before = std::chrono::steady_clock::now();
  drain();
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
  EXPECT_THAT(stored(), HasSubstr("MARK"));  // the reader still reads it

  other.end();
  backend.answers(200, R"({"saved":false})");
  EXPECT_THAT(processSMS("No transaction").output, HasSubstr("SMS ignored"));
  EXPECT_THAT(stored(), Not(HasSubstr("MARK")));
}

// Kills a draining run at the N-th call of each of these, performs one more run, and checks the
// files.
TEST_F(ADrainedText, IsInNoFileAfterAKillAndOneMoreRun) {
  int kills = 0;
  int gone = 0;
  const bool isLong = std::getenv("KIVO_LONG") != nullptr;
  for (const int parity : isLong ? std::vector{0, 1} : std::vector{0}) {
    for (const std::string name : {"fdatasync", "pwrite64", "ftruncate", "unlink", "openat"}) {
      // The files of libraries are opened before the run has begun.
      const int first = name == "openat" ? 8 : 1;
      for (int time = first; time < 200; ++time) {
        SCOPED_TRACE(name + " " + std::to_string(time));
        fs::remove_all(folders.dataHome());
        signIn();
        std::optional<Holder> other;
        if (time % 2 == parity) other.emplace(folders.storeFile(), openOnly);
        queueMessage();
        const ProgramResult result = linux_platform::runProgram(
            {.program = "strace",
             .arguments = {"--follow-forks", "--output=/dev/null", "--trace=" + name,
                           "--inject=" + name + ":signal=KILL:when=" + std::to_string(time),
                           call({}).program.string(), "perform", "ProcessSMSIntent", "--smsText",
                           "-"},
             .input = "Paid 150",
             .environment = {{"ASAN_OPTIONS", "detect_leaks=0"}}});  // they cannot be under strace
        const bool killed = result.status == 128 + SIGKILL;
        if (killed) ++kills;
        EXPECT_EQ(killed ? 0 : result.status, 0);
        EXPECT_THAT(processSMS("Paid 151").output, HasSubstr("Tracked"));
        if (queue().empty()) {
          ++gone;
          EXPECT_THAT(stored(), Not(HasSubstr("MARK")));
        } else {
          EXPECT_THAT(queue(), SizeIs(1));
        }
        if (!killed) break;
      }
    }
  }
  std::cout << kills << " kills, after " << gone << " of them the text had left the queue\n";
  EXPECT_GT(kills, 40);
  EXPECT_GT(gone, 10);
}

class AShownNotification : public testing::Test {
 protected:
  void add(const std::string& identifier, const std::string& interval) {
    ASSERT_EQ(phone
                  .callCenter("Add", {"app.kivo.expenses.intents", identifier,
                                      "{'title': <'MARKTITLE'>, 'body': <'MARKAMOUNT 7731.19'>}",
                                      interval, "false"})
                  .status,
              0);
  }
  bool isGone() {
    return testkit::eventually([this] {
      return testkit::bytesIn(file().parent_path()).find("MARK") == std::string::npos;
    });
  }
  fs::path file() {
    return phone.folders().dataHome() / "app.kivo.NotificationCenter" / "defaults.sqlite3";
  }

  testkit::PrivatePhone phone;
};

TEST_F(AShownNotification, IsInNoFile) {
  NotificationDisplay display(phone.address());
  add("one", "0.5");
  EXPECT_THAT(testkit::bytesIn(file().parent_path()), HasSubstr("MARKAMOUNT"));
  ASSERT_THAT(display.waitForShown(1, std::chrono::seconds(10)), SizeIs(1));
  EXPECT_TRUE(isGone());
}

TEST_F(AShownNotification, IsInNoFileWhenTheCenterWasRestartedBefore) {
  NotificationDisplay display(phone.address());
  add("one", "0.5");
  phone.killCenter();
  phone.startCenter();
  ASSERT_THAT(display.waitForShown(1, std::chrono::seconds(10)), SizeIs(1));
  EXPECT_TRUE(isGone());
}

TEST_F(AShownNotification, IsInNoFileWhenItsBundleIsDenied) {
  add("one", "60.0");
  EXPECT_EQ(phone.callCenter("SetAuthorizationStatus", {"app.kivo.expenses.intents", "1"}).status,
            0);
  EXPECT_TRUE(isGone());
}

}  // namespace
}  // namespace kivo
