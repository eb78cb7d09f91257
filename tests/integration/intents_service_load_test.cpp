// Many concurrent calls of the intents service.
#include <algorithm>
#include <csignal>
#include <sstream>

#include "served_intents.h"
#include "testkit/extension_program.h"
#include "testkit/scripted_server.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using testkit::isInstrumented;
using testkit::statusOf;

class ABusyService : public testkit::ServedIntents {
 protected:
  struct Load {
    std::chrono::milliseconds took{};
    long threads = 0;
    long peakKilobytes = 0;
    std::string replies;
  };

  // The service under a limit as the shell's ulimit takes it.
  static linux_platform::ProgramCall servingWith(const std::string& limit) {
    return {.program = "sh",
            .arguments = {"-c", "ulimit " + limit + " && exec \"$0\" serve",
                          serving().program.string()}};
  }

  // 500 overlapping calls against a backend that says `answer` after 200 ms.
  Load perform500(const std::string& answer) {
    const testkit::ScriptedServer server([&](testkit::ServerConnection& connection) {
      connection.readRequest();
      connection.idle(200ms);
      connection.write(testkit::httpAnswer(200, answer));
    });
    signIn(server.url());
    ChildProcess program(servingWith("-S -n 1024"));  // what a session grants at first
    EXPECT_TRUE(isServed());
    Load load;
    ChildProcess callers(client("overlapping_calls.py", {"500"}));
    testkit::eventually(
        [&] {
          load.threads = std::max(load.threads, statusOf(program.id(), "Threads"));
          return callers.outputSoFar().find('\n') != std::string::npos;
        },
        60s);
    const auto result = callers.wait();
    EXPECT_EQ(result.errors, "");
    load.peakKilobytes = statusOf(program.id(), "VmHWM");
    program.signal(SIGTERM);
    const auto ended = program.wait();
    EXPECT_EQ(ended.status, 0) << ended.errors;  // as a sanitizer that has found something says too
    long milliseconds = 0;
    std::istringstream lines(result.output);
    lines >> milliseconds >> std::ws;
    std::getline(lines, load.replies);
    load.took = std::chrono::milliseconds(milliseconds);
    RecordProperty("milliseconds", std::to_string(milliseconds));
    RecordProperty("threads", std::to_string(load.threads));
    RecordProperty("peakKilobytes", std::to_string(load.peakKilobytes));
    return load;
  }

  static void expectModest(const Load& load) {
    EXPECT_GE(load.threads, 1);
    EXPECT_GE(load.took, 200ms);
    if (isInstrumented) return;
    EXPECT_LE(load.threads, 12);
    EXPECT_LE(load.peakKilobytes, 80 * 1024);
  }
};

TEST_F(ABusyService, Performs500CallsAtATime) {
  const Load load = perform500(R"({"saved":false})");
  EXPECT_EQ(load.replies, "500 SMS ignored - not a transaction");
  expectModest(load);
  if (!isInstrumented) {
    EXPECT_LE(load.took, 2s);
  }
}

// How long this takes is up to the disk: each expense is three commits, each of them on the disk
// before the next.
TEST_F(ABusyService, Tracks500ExpensesAtATime) {
  const Load load = perform500(testkit::savedAnswer("expense"));
  EXPECT_THAT(load.replies, testing::MatchesRegex("500 Tracked .* at Carrefour"));
  expectModest(load);
}

TEST_F(ABusyService, DelaysCallsWithFewFileDescriptorsAndFailsNone) {
  const testkit::ScriptedServer server([&](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle(20ms);
    connection.write(testkit::httpAnswer(200, R"({"saved":false})"));
  });
  signIn(server.url());
  ChildProcess program(servingWith("-n 128"));
  ASSERT_TRUE(isServed());
  const auto result = linux_platform::runProgram(client("overlapping_calls.py", {"200"}));
  EXPECT_THAT(result.output, testing::EndsWith("\n200 SMS ignored - not a transaction\n"));
  program.signal(SIGTERM);
  EXPECT_EQ(program.wait().status, 0);
}

TEST_F(ABusyService, PerformsTheWaitingCallsWhenTerminated) {
  const testkit::ScriptedServer server([&](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle();
  });
  signIn(server.url());
  ChildProcess program(servingWith("-n 128"));
  ASSERT_TRUE(isServed());
  ChildProcess callers(client("overlapping_calls.py", {"50"}));
  ASSERT_TRUE(server.waitForRequests(8));
  program.signal(SIGTERM);
  EXPECT_EQ(program.wait(15s).status, 0);
  EXPECT_THAT(callers.wait(15s).output,
              testing::EndsWith("\n50 Saved offline - will process when connected\n"));
}

TEST_F(ABusyService, KeepsTheWaitingTextsWhenTheBusEnds) {
  const testkit::ScriptedServer server([&](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle();
  });
  signIn(server.url());
  ChildProcess program(servingWith("-n 72"));  // one at a time
  ASSERT_TRUE(isServed());
  ChildProcess callers(client("overlapping_calls.py", {"3"}));
  ASSERT_TRUE(server.waitForRequests(1));
  // Once this is answered, the calls that were sent before it have come.
  ASSERT_EQ(linux_platform::runProgram(client("call_intents.py", {"catalog"})).status, 0);
  phone.daemon().signal(SIGKILL);
  EXPECT_EQ(program.wait(15s).status, 0);
  EXPECT_THAT(queue(), testing::SizeIs(3));
}

}  // namespace
}  // namespace kivo
