#include "platform/linux/concurrency/task_executor.h"

#include <csignal>
#include <stdexcept>
#include <thread>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtest/gtest.h>

namespace kivo::linux_platform {
namespace {

namespace asio = boost::asio;
using platform::Task;

// Whether the wait ended by itself, not by a cancellation.
Task<bool> waitFor(std::chrono::milliseconds time) {
  asio::steady_timer timer(co_await asio::this_coro::executor, time);
  boost::system::error_code error;
  co_await timer.async_wait(asio::redirect_error(asio::use_awaitable, error));
  co_return !error;
}

Task<void> noteThread(std::thread::id* before, std::thread::id* after) {
  *before = std::this_thread::get_id();
  co_await waitFor(std::chrono::milliseconds(1));
  *after = std::this_thread::get_id();
}

Task<void> noteAtOnce(bool* noted) {
  *noted = true;
  co_return;
}

Task<void> failAfter(std::chrono::milliseconds time) {
  co_await waitFor(time);
  throw std::runtime_error("a failure");
}

Task<void> terminateOneself(int signal, bool* waitedInPeace, bool* ended) {
  std::raise(signal);
  *waitedInPeace = co_await waitFor(std::chrono::minutes(1));
  std::raise(signal);
  *ended = true;
}

class AnExecutor : public testing::Test {
 protected:
  TaskExecutor executor_{1};
};

TEST_F(AnExecutor, PerformsEachStepOfATaskOnAWorker) {
  std::thread::id before;
  std::thread::id after;
  executor_.perform(noteThread(&before, &after));
  EXPECT_NE(before, std::thread::id());
  EXPECT_NE(before, std::this_thread::get_id());
  EXPECT_EQ(after, before);  // it has one worker
}

TEST_F(AnExecutor, PerformsATaskThatNeverSuspends) {
  bool noted = false;
  executor_.perform(noteAtOnce(&noted));
  EXPECT_TRUE(noted);
}

TEST_F(AnExecutor, RethrowsTheExceptionOfATask) {
  EXPECT_THROW(executor_.perform(failAfter(std::chrono::milliseconds(1))), std::runtime_error);
}

TEST(ATermination, CancelsTheTaskAndLetsItFinish) {
  for (const int signal : {SIGTERM, SIGINT}) {
    TaskExecutor executor(1);
    bool waitedInPeace = true;
    bool ended = false;
    executor.perform(terminateOneself(signal, &waitedInPeace, &ended));
    EXPECT_FALSE(waitedInPeace);
    EXPECT_TRUE(ended);
  }
}

}  // namespace
}  // namespace kivo::linux_platform
