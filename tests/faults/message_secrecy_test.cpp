// A message does not leak into core dumps, arguments of other programs, printed lines or the
// controls of a terminal.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "demo/notification_display.h"
#include "testkit/extension_program.h"
#include "testkit/other_process.h"
#include "testkit/private_phone.h"

namespace kivo {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testkit::OtherProcess;

constexpr const char* message = "MARKTEXT 7731.19 at MARKMERCHANT";

class AMessage : public testkit::ExtensionProgram {
 protected:
  // How a process ended that may dump as much as it likes into a folder of its own and does `work`.
  int statusOf(const std::function<void()>& work) {
    const std::filesystem::path place = folders.home() / "dumps";
    std::filesystem::create_directories(place);
    OtherProcess process([&](OtherProcess&) {
      const rlimit all{RLIM_INFINITY, RLIM_INFINITY};
      if (setrlimit(RLIMIT_CORE, &all) != 0 || chdir(place.c_str()) != 0) return false;
      work();
      return false;
    });
    return process.end();
  }

  // Runs a program of ours on a terminal of its own, without its own bold figures, so that every
  // control character would be one of the message.
  [[nodiscard]] static ProgramResult onTerminal(const std::string& command) {
    return linux_platform::runProgram(
        {.program = "script",
         .arguments = {"--quiet", "--return", "--command",
                       linux_platform::programFolder().string() + "/" + command, "/dev/null"},
         .environment = {{"NO_COLOR", "1"}}});
  }
};

TEST_F(AMessage, IsInNoCoreDumpOfARunThatAborts) {
  signIn("http://exa mple");  // cannot be parsed, which stops the process
  const std::string input = folders.home() / "message";
  std::ofstream(input) << message;
  const int plain = statusOf([] { std::abort(); });
  ASSERT_EQ(WTERMSIG(plain), SIGABRT);
  if (!WCOREDUMP(plain)) GTEST_SKIP() << "no process dumps core on this machine";

  const std::string program = call({}).program;
  const int status = statusOf([&] {
    if (dup2(open(input.c_str(), O_RDONLY), STDIN_FILENO) < 0) return;
    execl(program.c_str(), program.c_str(), "perform", "ProcessSMSIntent", "--smsText", "-",
          nullptr);
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGABRT);
  EXPECT_FALSE(WCOREDUMP(status));
}

TEST_F(AMessage, IsInNoCoreDumpOfTheNotificationCenter) {
  if (!WCOREDUMP(statusOf([] { std::abort(); }))) {
    GTEST_SKIP() << "no process dumps core on this machine";
  }
  testkit::PrivatePhone phone;
  const std::string program = linux_platform::programFolder() / "kivo-notification-center";
  int status = 0;
  std::thread running(
      [&] { status = statusOf([&] { execl(program.c_str(), program.c_str(), nullptr); }); });
  std::optional<pid_t> center;
  EXPECT_TRUE(testkit::eventually([&] {
    center = phone.processOf("app.kivo.NotificationCenter");
    return center.has_value();
  }));
  if (center) kill(*center, SIGQUIT);
  running.join();
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGQUIT);
  EXPECT_FALSE(WCOREDUMP(status));
}

TEST_F(AMessage, IsInNoArgumentOfAChildProcess) {
  signIn();
  backend.answers(200, testkit::savedAnswer("expense"));
  const std::string calls = folders.home() / "calls";
  const ProgramResult result = linux_platform::runProgram(
      {.program = "strace",
       .arguments = {"--follow-forks", "--string-limit=4096", "--output=" + calls, "--trace=execve",
                     call({}).program.string(), "perform", "ProcessSMSIntent", "--smsText", "-"},
       .input = message});
  EXPECT_THAT(result.output, HasSubstr("Tracked"));
  std::ifstream in(calls);
  const std::string traced{std::istreambuf_iterator<char>(in), {}};
  EXPECT_THAT(traced, HasSubstr("execve("));
  EXPECT_EQ(traced.find("execve("), traced.rfind("execve(")) << traced;
  EXPECT_THAT(traced, Not(HasSubstr("MARK")));
}

TEST_F(AMessage, IsEscapedWhenATerminalShowsTheQueueOrTheStore) {
  signIn();
  backend.goAway();
  const std::string hostile =
      "\x1b]0;MARK\x07\x1b[2J\xc2\x9b"
      "31m\r\n\x08";
  EXPECT_EQ(processSMS(hostile).status, 0);
  const std::string shown = R"(\x1b]0;MARK\x07\x1b[2J\x9b31m)";
  {
    SharedStore opened = store();
    opened.writeText(StoreKey{hostile}, hostile);
    opened.writeText(StoreKeys::currency, hostile);
    opened.writeText(StoreKeys::todayTotal, hostile);
    opened.writeText(StoreKeys::todayDateKey, hostile);
    opened.synchronize();
  }
  for (const char* const command :
       {"kivo-phone queue", "kivo-phone store list", "kivo-phone store get currency",
        "kivo-phone widget", "kivo-intents catalog"}) {
    SCOPED_TRACE(command);
    const ProgramResult result = onTerminal(command);
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output, "");
    for (const char* const control : {"\x1b", "\x07", "\x08", "\xc2\x9b"}) {
      EXPECT_THAT(result.output, Not(HasSubstr(control)));
    }
  }
  EXPECT_THAT(onTerminal("kivo-phone queue").output, HasSubstr(shown));
  EXPECT_THAT(onTerminal("kivo-phone store list").output, HasSubstr(shown));
  EXPECT_THAT(onTerminal("kivo-phone store get currency").output, HasSubstr(shown));
}

class ANotifiedMessage : public testing::Test {
 protected:
  static constexpr const char* content =
      "{'title': <'MARKTITLE'>, 'body': <'MARKAMOUNT 7731.19'>, "
      "'userInfo': <{'deepLink': 'kivo-expenses://', 'other': 'MARKINFO'}>}";

  ProgramResult add(const std::string& interval) {
    return phone.callCenter("Add", {"some.bundle", "one", content, "--", interval, "false"});
  }

  bool hasCenter() {
    return phone
               .call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                     "org.freedesktop.DBus.NameHasOwner", {"app.kivo.NotificationCenter"})
               .output == "(true,)\n";
  }

  testkit::PrivatePhone phone;
};

TEST_F(ANotifiedMessage, IsNotPassedToTheLinkOpener) {
  NotificationDisplay display(phone.address());
  ASSERT_EQ(add("0.0").status, 0);
  const auto shown = display.waitForShown(1, std::chrono::seconds(10));
  ASSERT_EQ(shown.size(), 1U);
  ASSERT_TRUE(testkit::eventually(
      [&] { return phone.callCenter("Pending", {"some.bundle"}).output == "(@as [],)\n"; }));
  display.invokeDefaultAction(shown[0].id);
  EXPECT_THAT(phone.openedLinks(1), ElementsAre("kivo-expenses://"));
}

TEST_F(ANotifiedMessage, IsNotPrintedByTheCenter) {
  ChildProcess center({.program = linux_platform::programFolder() / "kivo-notification-center"});
  ASSERT_TRUE(testkit::eventually([&] { return hasCenter(); }));
  const auto expectDiscreet = [](const ProgramResult& result) {
    EXPECT_THAT(result.output + result.errors, Not(HasSubstr("MARK")));
    EXPECT_THAT(result.output + result.errors, Not(HasSubstr("7731")));
  };
  expectDiscreet(add("-1.0"));
  expectDiscreet(add("0.0"));  // there is no notification server
  center.signal(SIGTERM);
  expectDiscreet(center.wait());

  {  // what it finds on the disk cannot be read
    auto suite = platform::UserDefaults::initWithSuiteName("app.kivo.NotificationCenter");
    ASSERT_TRUE(suite.has_value());
    suite->setObject("pendingNotifications", "[{\"title\":\"MARKTITLE 7731\"");
    suite->setObject("shownNotifications", "MARK 7731");
    suite->synchronize();
  }
  ChildProcess next({.program = linux_platform::programFolder() / "kivo-notification-center"});
  ASSERT_TRUE(testkit::eventually([&] { return hasCenter(); }));
  ASSERT_EQ(phone.callCenter("Pending", {"some.bundle"}).status, 0);
  next.signal(SIGTERM);
  const ProgramResult result = next.wait();
  EXPECT_THAT(result.errors, HasSubstr("cannot be read"));
  expectDiscreet(result);
}

}  // namespace
}  // namespace kivo
