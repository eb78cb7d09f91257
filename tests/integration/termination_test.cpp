// A run that receives SIGTERM or SIGINT.
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <limits>
#include <mutex>

#include "testkit/extension_program.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using testing::SizeIs;

// Answers the first requests, and holds the later ones back until its end.
class HeldBackend {
 public:
  ~HeldBackend() { answerAtOnce(std::numeric_limits<std::size_t>::max()); }
  [[nodiscard]] std::string url() const { return server_.url(); }
  bool waitForRequests(std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, 10s, [&] { return arrived_ >= count; });
  }
  void answerAtOnce(std::size_t count) {
    const std::lock_guard lock(mutex_);
    answeredAtOnce_ = count;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t arrived_ = 0;  // guarded by mutex_, like answeredAtOnce_
  std::size_t answeredAtOnce_ = 0;
  testkit::LoopbackHttpServer server_{[this](const testkit::HttpRequest&) {
    std::unique_lock lock(mutex_);
    const std::size_t number = ++arrived_;
    changed_.notify_all();
    changed_.wait_for(lock, 10s, [&] { return number <= answeredAtOnce_; });
    return testkit::HttpAnswer{.status = 200, .body = testkit::savedAnswer("expense")};
  }};
};

class ATerminatedRun : public testkit::ExtensionProgram, public testing::WithParamInterface<int> {
 protected:
  HeldBackend held;
};

TEST_P(ATerminatedRun, QueuesTheTextOfItsPendingRequest) {
  signIn(held.url());
  ChildProcess program(call({"perform", "ProcessSMSIntent", "--smsText", "-"}, "Paid 150"));
  ASSERT_TRUE(held.waitForRequests(1));
  const auto before = std::chrono::steady_clock::now();
  program.signal(GetParam());
  const ProgramResult result = program.wait();
  EXPECT_LT(std::chrono::steady_clock::now() - before, 3s);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "ProcessSMSIntent error: URLError cancelled: The exchange was cancelled\n"
            "Saved offline - will process when connected\n");
  ASSERT_THAT(queue(), SizeIs(1));
  EXPECT_EQ(queue()[0].smsText, "Paid 150");
}

TEST_P(ATerminatedRun, CountsTheItemsOfItsDrainAsFailedAndAnswers) {
  signIn("http://127.0.0.1:1");
  EXPECT_EQ(processSMS("Paid 1").status, 0);
  EXPECT_EQ(processSMS("Paid 2").status, 0);
  signIn(held.url());
  held.answerAtOnce(1);
  ChildProcess program(call({"perform", "ProcessSMSIntent", "--smsText", "-"}, "Paid 3"));
  ASSERT_TRUE(held.waitForRequests(2));
  program.signal(GetParam());
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, testing::StartsWith("Tracked "));
  ASSERT_THAT(queue(), SizeIs(2));
  EXPECT_EQ(queue()[0].retryCount, 1);
  EXPECT_EQ(queue()[1].retryCount, 1);
  EXPECT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), 0);
}

TEST_P(ATerminatedRun, IgnoresFurtherSignals) {
  signIn(held.url());
  ChildProcess program(call({"perform", "ProcessSMSIntent", "--smsText", "-"}, "Paid 150"));
  ASSERT_TRUE(held.waitForRequests(1));
  for (int count = 0; count < 20; ++count) program.signal(GetParam());
  EXPECT_EQ(program.wait().status, 0);
  EXPECT_THAT(queue(), SizeIs(1));
}

INSTANTIATE_TEST_SUITE_P(, ATerminatedRun, testing::Values(SIGTERM, SIGINT),
                         [](const auto& signal) {
                           return std::string(signal.param == SIGTERM ? "SIGTERM" : "SIGINT");
                         });

}  // namespace
}  // namespace kivo
