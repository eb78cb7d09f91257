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

TEST(ATaskPerformedHere, StaysOnTheCallingThread) {
  std::thread::id before;
  std::thread::id after;
  TaskExecutor::performHere(noteThread(&before, &after));
  EXPECT_EQ(before, std::this_thread::get_id());
  EXPECT_EQ(after, std::this_thread::get_id());
}

TEST(ATaskPerformedHere, MayEndWithoutWaitingForAnything) {
  bool noted = false;
  TaskExecutor::performHere(noteAtOnce(&noted));
  EXPECT_TRUE(noted);
}

TEST(ATaskPerformedHere, HasWhatItThrowsThrownToItsCaller) {
  EXPECT_THROW(TaskExecutor::performHere(failAfter(std::chrono::milliseconds(1))),
               std::runtime_error);
}

TEST(ATaskPerformedHere, IsCancelledByATerminationAndStillEnds) {
  for (const int signal : {SIGTERM, SIGINT}) {
    bool waitedInPeace = true;
    bool ended = false;
    TaskExecutor::performHere(terminateOneself(signal, &waitedInPeace, &ended));
    EXPECT_FALSE(waitedInPeace);
    EXPECT_TRUE(ended);
  }
}

}  // namespace
}  // namespace kivo::linux_platform
