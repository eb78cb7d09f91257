#include "platform/linux/concurrency/task_executor.h"

#include <csignal>
#include <exception>
#include <future>
#include <optional>
#include <utility>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/thread_pool.hpp>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;

namespace {

// Without the first line an awaitable throws at its next suspension after a cancellation, and a
// cancelled run would lose its text instead of queueing it.
platform::Task<void> uninterrupted(platform::Task<void> task) {
  co_await asio::this_coro::throw_if_cancelled(false);
  co_await std::move(task);
}

}  // namespace

struct TaskExecutor::Pool {
  explicit Pool(unsigned workers) : threads(workers) {}
  // From here on, a signal that arrives before `waitForTermination` is kept. Returns false when no
  // file descriptor is left.
  bool catchTerminations() {
    try {
      terminations.emplace(threads, SIGTERM, SIGINT);
      return true;
    } catch (const boost::system::system_error&) {
      return false;
    }
  }
  void waitForTermination(std::function<void()> action) {
    terminations->async_wait([action = std::move(action)](boost::system::error_code stopped, int) {
      if (!stopped) action();
    });
  }
  asio::thread_pool threads;
  std::optional<asio::signal_set> terminations;  // used by the executor's owner only
};

struct RunningTask::State {
  using Strand = asio::strand<asio::thread_pool::executor_type>;
  explicit State(Strand taskStrand) : strand(std::move(taskStrand)) {}

  Strand strand;
  asio::cancellation_signal cancellation;  // used on the strand only
  std::promise<void> promise;
  std::shared_future<void> ended = promise.get_future().share();
};

void RunningTask::cancel() {
  asio::dispatch(state_->strand,
                 [state = state_] { state->cancellation.emit(asio::cancellation_type::terminal); });
}

void RunningTask::wait() { state_->ended.get(); }

bool RunningTask::waitFor(std::chrono::milliseconds limit) {
  return state_->ended.wait_for(limit) == std::future_status::ready;
}

TaskExecutor::TaskExecutor(unsigned workers) try : pool_(std::make_unique<Pool>(workers)) {
} catch (const boost::system::system_error& error) {
  throw Failure(error.what());
}

TaskExecutor::~TaskExecutor() {
  if (pool_->terminations) pool_->terminations->cancel();
  pool_->threads.join();
}

RunningTask TaskExecutor::start(platform::Task<void> task) {
  auto state = std::make_shared<RunningTask::State>(asio::make_strand(pool_->threads));
  auto onEnd = [state](std::exception_ptr thrown) {
    if (thrown) {
      state->promise.set_exception(thrown);
    } else {
      state->promise.set_value();
    }
  };
  asio::co_spawn(state->strand, uninterrupted(std::move(task)),
                 asio::bind_cancellation_slot(state->cancellation.slot(), std::move(onEnd)));
  return RunningTask(std::move(state));
}

void TaskExecutor::onTermination(std::function<void()> action) {
  if (pool_->catchTerminations()) pool_->waitForTermination(std::move(action));
}

void TaskExecutor::perform(platform::Task<void> task) {
  const bool cancellable = pool_->catchTerminations();
  RunningTask running = start(std::move(task));
  if (cancellable) pool_->waitForTermination([running]() mutable { running.cancel(); });
  running.wait();
}

}  // namespace kivo::linux_platform
