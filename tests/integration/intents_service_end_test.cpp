// The end of the intents service, which loses no call.
#include <csignal>
#include <fstream>

#include "served_intents.h"
#include "testkit/extension_program.h"
#include "testkit/scripted_server.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using linux_platform::runProgram;
using testing::HasSubstr;
using testing::SizeIs;
using testkit::replyWith;

constexpr const char* idleLimit = "20";  // ms

linux_platform::ProgramCall servingShortly() {
  return {.program = linux_platform::programFolder() / "kivo-short-lived-intents",
          .arguments = {idleLimit}};
}

// The services of a phone whose intents service has a very short idle timeout.
class ShortLivedServices {
 public:
  ShortLivedServices() {
    const auto call = servingShortly();
    std::ofstream(folder_.path() / "app.kivo.expenses.Intents.service")
        << "[D-BUS Service]\nName=" << testkit::intentsName << "\nExec=\"" << call.program.string()
        << "\" " << idleLimit << '\n';
  }
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }

 private:
  testkit::TemporaryFolder folder_;
};

class AnIdleService : public ShortLivedServices, public testkit::ServedIntents {
 protected:
  AnIdleService() : ServedIntents(folder()) {}
};

TEST_F(AnIdleService, ExitsWithStatusZero) {
  ChildProcess program(servingShortly());
  const ProgramResult result = program.wait(10s);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output + result.errors, "");
}

TEST_F(AnIdleService, WaitsForACallThatOutlastsTheIdleTimeout) {
  const testkit::ScriptedServer server([](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle(500ms);
    connection.write(testkit::httpAnswer(200, R"({"saved":false})"));
  });
  signIn(server.url());
  EXPECT_EQ(processSMS("Paid").output, replyWith("SMS ignored - not a transaction"));
}

TEST_F(AnIdleService, Answers200CallsThatArriveWhileItExits) {
  const ProgramResult result =
      runProgram(client("calls_at_the_idle_end.py", {"200", idleLimit}), 110s);
  int answered = 0;
  int processes = 0;
  std::istringstream(result.output) >> answered >> processes;
  EXPECT_EQ(answered, 200) << result.output << result.errors;
  // Both sides of the moment were met: calls that the ending process took, and calls for a new one.
  EXPECT_GT(processes, 1);
  EXPECT_LT(processes, 200);
}

class AnInstalledService : public testkit::ServedIntents {};

TEST_F(AnInstalledService, EndsTenSecondsAfterItsLastCall) {
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  std::this_thread::sleep_for(2s);
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  const auto answered = std::chrono::steady_clock::now();
  EXPECT_EQ(program.wait(30s).status, 0);
  const auto took = std::chrono::steady_clock::now() - answered;
  EXPECT_GE(took, 9500ms);
  EXPECT_LE(took, 12s);
}

class ATerminatedService : public testkit::ServedIntents, public testing::WithParamInterface<int> {
 protected:
  testkit::ScriptedServer server{[](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle();
  }};
};

TEST_P(ATerminatedService, ExitsAtOnceWhenIdle) {
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  program.signal(GetParam());
  EXPECT_EQ(program.wait(5s).status, 0);
}

TEST_P(ATerminatedService, KeepsTheTextOfItsRunAndAnswersItsCaller) {
  signIn(server.url());
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  ChildProcess caller(
      client("call_intents.py", {"perform", "ProcessSMSIntent", "smsText", "text", "Paid 150"}));
  ASSERT_TRUE(server.waitForRequests(1));
  for (int count = 0; count < 20; ++count) program.signal(GetParam());
  const ProgramResult result = program.wait(10s);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "ProcessSMSIntent error: URLError cancelled: The exchange was cancelled\n");
  EXPECT_EQ(caller.wait(10s).output, "Saved offline - will process when connected\n");
  ASSERT_THAT(queue(), SizeIs(1));
  EXPECT_EQ(queue()[0].smsText, "Paid 150");
}

TEST_P(ATerminatedService, AnswersEachOfItsManyCallers) {
  signIn(server.url());
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  ChildProcess callers(client("overlapping_calls.py", {"20"}));
  ASSERT_TRUE(server.waitForRequests(20));
  program.signal(GetParam());
  EXPECT_EQ(program.wait(15s).status, 0);
  EXPECT_THAT(callers.wait(15s).output,
              testing::EndsWith("\n20 Saved offline - will process when connected\n"));
}

TEST_P(ATerminatedService, ReleasesItsBusNameForTheNextCall) {
  signIn(server.url());
  ChildProcess busy(
      client("call_intents.py", {"perform", "ProcessSMSIntent", "smsText", "text", "Paid 150"}));
  ASSERT_TRUE(server.waitForRequests(1));
  const pid_t first = service();
  kill(first, GetParam());
  EXPECT_TRUE(testkit::PrivatePhone::hasEnded(first));
  EXPECT_EQ(busy.wait(10s).output, "Saved offline - will process when connected\n");
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  EXPECT_NE(service(), first);
}

INSTANTIATE_TEST_SUITE_P(, ATerminatedService, testing::Values(SIGTERM, SIGINT),
                         [](const auto& signal) {
                           return std::string(signal.param == SIGTERM ? "SIGTERM" : "SIGINT");
                         });

class AFatalStop : public testkit::ServedIntents {};

TEST_F(AFatalStop, EndsTheProcessAndFailsTheCall) {
  signIn("http://not a url");
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  EXPECT_THAT(processSMS("Paid 150").errors, HasSubstr("org.freedesktop.DBus.Error.NoReply"));
  const ProgramResult result = program.wait(10s);
  EXPECT_EQ(result.status, 128 + SIGABRT);
  EXPECT_NE(result.errors, "");
}

TEST_F(AFatalStop, LetsTheNextCallStartANewProcess) {
  testkit::ToldBackend backend;
  signIn(backend.url());
  EXPECT_EQ(processSMS("Code 1").output, replyWith("SMS ignored - not a transaction"));
  const pid_t first = service();
  signIn("http://not a url");
  EXPECT_THAT(processSMS("Paid 150").errors, HasSubstr("org.freedesktop.DBus.Error.NoReply"));
  EXPECT_TRUE(testkit::PrivatePhone::hasEnded(first));
  signIn(backend.url());
  EXPECT_EQ(processSMS("Code 2").output, replyWith("SMS ignored - not a transaction"));
  EXPECT_NE(service(), first);
}

}  // namespace
}  // namespace kivo
