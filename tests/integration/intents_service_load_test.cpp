// Many calls of the intents' service at a time.
#include <algorithm>
#include <sstream>

#include "extension_program.h"
#include "served_intents.h"
#include "testkit/scripted_server.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using testkit::isInstrumented;
using testkit::replyWith;
using testkit::statusOf;

class ABusyService : public testkit::ServedIntents {
 protected:
  struct Load {
    std::chrono::milliseconds took{};
    long threads = 0;
    long peakKilobytes = 0;
    std::string replies;
  };

  // 500 overlapping calls against a backend that says `answer` after 200 ms.
  Load perform500(const std::string& answer) {
    const testkit::ScriptedServer server([&](testkit::ServerConnection& connection) {
      connection.readRequest();
      connection.idle(200ms);
      connection.write(testkit::httpAnswer(200, answer));
    });
    signIn(server.url());
    EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
    const pid_t process = service();
    Load load;
    ChildProcess callers(client("overlapping_calls.py", {"500"}));
    testkit::eventually(
        [&] {
          load.threads = std::max(load.threads, statusOf(process, "Threads"));
          return callers.outputSoFar().find('\n') != std::string::npos;
        },
        60s);
    const auto result = callers.wait();
    EXPECT_EQ(result.errors, "");
    load.peakKilobytes = statusOf(process, "VmHWM");
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
    EXPECT_LE(load.took, 2s);
    EXPECT_LE(load.threads, 12);
    EXPECT_LE(load.peakKilobytes, 80 * 1024);
  }
};

TEST_F(ABusyService, Performs500CallsAtATime) {
  const Load load = perform500(R"({"saved":false})");
  EXPECT_EQ(load.replies, "500 SMS ignored - not a transaction");
  expectModest(load);
}

TEST_F(ABusyService, Tracks500ExpensesAtATime) {
  const Load load = perform500(testkit::savedAnswer("expense"));
  EXPECT_THAT(load.replies, testing::MatchesRegex("500 Tracked .* at Carrefour"));
  expectModest(load);
}

}  // namespace
}  // namespace kivo
