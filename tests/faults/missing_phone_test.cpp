// Runs without a working bus or notification center: the dialogs are the same byte for byte, and a
// run waits one second at most.
#include <array>
#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

#include "demo/private_session_bus.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "store_agreement.h"
#include "testkit/extension_program.h"
#include "testkit/private_phone.h"
#include "testkit/scripted_server.h"
#include "testkit/silent_socket.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

constexpr const char* tracked = "Tracked EGP\u00a0150.00 at Carrefour\n";
constexpr const char* savedOffline =
    "ProcessSMSIntent error: URLError cannotConnectToHost: The host did not take the connection\n"
    "Saved offline - will process when connected\n";

constexpr const char* centerName = "app.kivo.NotificationCenter";
constexpr const char* centerPath = "/app/kivo/NotificationCenter";
constexpr const char* centerInterface = "app.kivo.NotificationCenter1";

class ARunWithABadBus : public ExtensionProgram {
 protected:
  ARunWithABadBus() { signIn(); }

  /// An offline run, and then an online one that drains its text: both have to post.
  void answersTheSame(const std::string& surroundings, Clock::duration wait = 1s) {
    SCOPED_TRACE(surroundings);
    backend.goAway();
    expect(savedOffline, "Paid 1", wait);
    ASSERT_EQ(queue().size(), 1U);
    const std::string key = queue()[0].id;
    backend.comeBack();
    backend.answers(200, savedAnswer("expense"));
    expect(tracked, "Paid 2", wait);
    EXPECT_TRUE(queue().empty());
    const auto requests = backend.requests();
    ASSERT_FALSE(requests.empty());
    EXPECT_THAT(requests.back().body, testing::HasSubstr(key));
    EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
  }

  void answersTheSameOnBus(const std::string& address, Clock::duration wait = 1s) {
    const ScopedVariable variable("DBUS_SESSION_BUS_ADDRESS", address);
    answersTheSame("the bus " + address, wait);
  }

  /// A bus that starts the notification center by running `command`.
  [[nodiscard]] std::unique_ptr<PrivateSessionBus> busStartingCenterBy(const std::string& command) {
    const auto services = folders.home() / "services";
    std::filesystem::create_directories(services);
    std::ofstream(services / "center.service")
        << "[D-BUS Service]\nName=" << centerName << "\nExec=" << command << "\n";
    return std::make_unique<PrivateSessionBus>(folders.home(), std::vector{services});
  }

 private:
  void expect(const std::string& dialog, const std::string& text, Clock::duration wait) {
    // The time that a run needs on this machine now.
    const auto begin = Clock::now();
    EXPECT_EQ(run({"catalog"}).status, 0);
    const auto start = Clock::now() - begin;
    const auto before = Clock::now();
    const ProgramResult result = processSMS(text);
    const auto took = Clock::now() - before;
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, dialog);
    EXPECT_EQ(result.errors, "");
    EXPECT_LT(std::chrono::duration<double>(took).count(),
              std::chrono::duration<double>(wait + start * 3 + 400ms).count());
  }
};

TEST_F(ARunWithABadBus, AnswersTheSameWhenTheBusCannotBeReached) {
  std::ofstream(folders.home() / "file") << "no socket";
  for (const std::string& address :
       {std::string(), std::string("nonsense"), std::string("unix:path=/nonexistent/bus"),
        std::string("tcp:host=127.0.0.1,port=1"), std::string("unix:path="),
        "unix:path=" + (folders.home() / "file").string(), std::string("unixexec:path=/bin/false"),
        std::string(5000, ';')}) {
    answersTheSameOnBus(address);
  }
  const ScopedVariable none("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
  answersTheSame("no bus in the environment");
  const ScopedVariable noFolder("XDG_RUNTIME_DIR", std::nullopt);
  answersTheSame("no runtime folder either");
}

TEST_F(ARunWithABadBus, StartsNoBusItself) {
  const auto trace = folders.home() / "trace";
  const ScopedVariable display("DISPLAY", ":0");
  for (const char* const address : {"autolaunch:", "unix:path=/nonexistent/bus;autolaunch:"}) {
    const ScopedVariable variable("DBUS_SESSION_BUS_ADDRESS", address);
    const ProgramResult result = linux_platform::runProgram(
        {.program = "strace",
         .arguments = {"-f", "-e", "trace=execve", "-o", trace,
                       linux_platform::programFolder() / "kivo-intents", "perform",
                       "ProcessSMSIntent", "--smsText", "Paid 1"}});
    EXPECT_EQ(result.status, 0) << result.errors;
    std::ifstream in(trace);
    const std::string started{std::istreambuf_iterator<char>(in), {}};
    EXPECT_THAT(started, testing::HasSubstr("ProcessSMSIntent")) << address;
    EXPECT_THAT(started, testing::Not(testing::HasSubstr("dbus-launch"))) << address;
  }
}

TEST_F(ARunWithABadBus, AnswersTheSameWhenTheBusHangs) {
  const SilentSocket silent(folders.home() / "silent");
  answersTheSameOnBus(silent.busAddress());
  PrivateSessionBus bus(folders.home());
  bus.daemon().signal(SIGSTOP);
  answersTheSameOnBus(bus.address());
  bus.daemon().signal(SIGCONT);
}

TEST_F(ARunWithABadBus, AnswersTheSameWhenTheBusAcceptsNoConnection) {
  SilentSocket full(folders.home() / "full");
  full.acceptNoConnection();
  answersTheSameOnBus(full.busAddress());
}

TEST_F(ARunWithABadBus, AnswersTheSameWhenTheBusSendsGarbage) {
  for (const std::string& words :
       {std::string(), std::string("OK\r\n"), std::string("HTTP/1.1\r\n"),
        std::string("REJECTED EXTERNAL\r\n"), std::string(100'000, 'x'),
        std::string("OK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD"
                    "\r\nl\xff\xff\xff garbage of a message")}) {
    const ScriptedServer server([&](ServerConnection& connection) {
      connection.write(words);
      connection.idle(100ms);
    });
    answersTheSameOnBus("tcp:host=127.0.0.1,port=" + std::to_string(server.port()));
  }
}

TEST_F(ARunWithABadBus, AnswersTheSameWhenTheBusDiesMeanwhile) {
  for (const auto pause : {0ms, 5ms, 20ms, 100ms, 500ms}) {
    const TemporaryFolder folder;
    PrivateSessionBus bus(folder.path());
    bus.daemon().signal(SIGSTOP);
    std::thread killer([&] {
      std::this_thread::sleep_for(pause);
      bus.daemon().signal(SIGKILL);
    });
    answersTheSameOnBus(bus.address());
    killer.join();
  }
}

TEST_F(ARunWithABadBus, AnswersTheSameWhenTheCenterCannotBeStarted) {
  const PrivateSessionBus none(folders.home());
  answersTheSameOnBus(none.address());
  for (const char* const command : {"/nonexistent", "/bin/false", "/bin/true", "/bin/sleep 5"}) {
    const auto bus = busStartingCenterBy(command);
    answersTheSameOnBus(bus->address());
  }
}

class ARunWithABadCenter : public ARunWithABadBus {
 protected:
  /// The real notification center, on a bus without a notification server.
  void startCenter() {
    bus_ = std::make_unique<PrivateSessionBus>(
        folders.home(),
        std::vector{linux_platform::programFolder().parent_path() / "dbus-services"});
    address_.emplace("DBUS_SESSION_BUS_ADDRESS", bus_->address());
    ASSERT_TRUE(linux_platform::setAuthorizationStatus(
        "app.kivo.expenses.intents", platform::UNAuthorizationStatus::authorized));
  }

  void signalCenter(int signal) {
    const std::string answer =
        busCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                "org.freedesktop.DBus.GetConnectionUnixProcessID", {centerName});
    ASSERT_NE(answer, "");
    kill(std::stoi(answer.substr(answer.find(' '))), signal);  // (uint32 1234,)
  }

  /// A center whose answers are given as Python code.
  void startOddCenter() {
    bus_ = std::make_unique<PrivateSessionBus>(folders.home());
    address_.emplace("DBUS_SESSION_BUS_ADDRESS", bus_->address());
    mock_ = std::make_unique<linux_platform::ChildProcess>(ProgramCall{
        .program = "/usr/bin/python3",
        .arguments = {"-u", "-m", "dbusmock", centerName, centerPath, centerInterface}});
    ASSERT_TRUE(eventually([] {
      return busCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                     "org.freedesktop.DBus.NameHasOwner", {centerName}) == "(true,)\n";
    }));
  }
  static void answers(const char* method, const char* in, const char* out, const char* python) {
    EXPECT_NE(busCall(centerName, centerPath, "org.freedesktop.DBus.Mock.AddMethod",
                      {centerInterface, method, in, out, python}),
              "");
  }

 private:
  static std::string busCall(const std::string& service, const std::string& path,
                             const std::string& method, std::vector<std::string> arguments) {
    std::vector<std::string> all{"call",          "--session", "--dest",   service,
                                 "--object-path", path,        "--method", method};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return linux_platform::runProgram({.program = "gdbus", .arguments = std::move(all)}).output;
  }

  std::unique_ptr<PrivateSessionBus> bus_;
  std::optional<ScopedVariable> address_;
  std::unique_ptr<linux_platform::ChildProcess> mock_;
};

TEST_F(ARunWithABadCenter, AnswersTheSameWithoutANotificationServer) {
  startCenter();
  answersTheSame("no notification server");
}

TEST_F(ARunWithABadCenter, AnswersTheSameWithoutPermission) {
  startCenter();
  using enum platform::UNAuthorizationStatus;
  for (const auto status : {notDetermined, denied, provisional, ephemeral}) {
    ASSERT_TRUE(linux_platform::setAuthorizationStatus("app.kivo.expenses.intents", status));
    answersTheSame("permission " + std::to_string(static_cast<int>(status)));
  }
}

TEST_F(ARunWithABadCenter, AnswersTheSameWhenTheCenterHangs) {
  startCenter();
  signalCenter(SIGSTOP);
  answersTheSame("a center that hangs");
  signalCenter(SIGKILL);
}

TEST_F(ARunWithABadCenter, AnswersTheSameWhenTheCenterDiesDuringACall) {
  startCenter();
  for (const auto pause : {0ms, 10ms, 300ms}) {
    signalCenter(SIGSTOP);
    std::thread killer([&] {
      std::this_thread::sleep_for(pause);
      signalCenter(SIGKILL);
    });
    answersTheSame("a center that dies");
    killer.join();
  }
}

TEST_F(ARunWithABadCenter, AnswersTheSameWhenTheCenterRefuses) {
  startOddCenter();
  const char* const no = "raise dbus.exceptions.DBusException('no', name='org.example.No')";
  answers("AuthorizationStatus", "s", "i", no);
  answersTheSame("no status");
  answers("AuthorizationStatus", "s", "i", "ret = 2");
  answers("Add", "ssa{sv}db", "", no);
  answersTheSame("no notification");
}

TEST_F(ARunWithABadCenter, AnswersTheSameWhenTheCenterAnswersGarbage) {
  startOddCenter();
  answersTheSame("no method at all");
  const std::array nonsense{std::pair("s", "ret = 'authorized'"),    std::pair("i", "ret = 5"),
                            std::pair("i", "ret = -2147483648"),     std::pair("", ""),
                            std::pair("as", "ret = ['x'] * 100000"), std::pair("x", "ret = 2")};
  for (const auto& [type, python] : nonsense) {
    answers("AuthorizationStatus", "s", type, python);
    answersTheSame(std::string("a status of ") + type + " " + python);
  }
  answers("AuthorizationStatus", "s", "i", "ret = 2");
  answers("Add", "ssa{sv}db", "as", "ret = ['x'] * 100000");
  answersTheSame("something for a notification");
}

TEST_F(ARunWithABadCenter, AnswersTheSameWhenTheCenterAnswersAfterTheTimeout) {
  startOddCenter();
  answers("AuthorizationStatus", "s", "i", "import time; time.sleep(1.2); ret = 2");
  answers("Add", "ssa{sv}db", "", "import time; time.sleep(1.2)");
  answersTheSame("a slow center");
}

}  // namespace
}  // namespace kivo::testkit
