#include "platform/linux/process/session_bus.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/this_coro.hpp>

#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;

// A run is known by its executor: every task is started on a strand of its own, which all that it
// awaits shares with it and no other task does.
struct SessionBus::Runs {
  std::mutex mutex;
  std::vector<asio::any_io_executor> unanswered;  // guarded by the mutex
  std::atomic<bool> lastWasAnswered = true;

  void end(const asio::any_io_executor& run) {
    const std::lock_guard lock(mutex);
    lastWasAnswered = std::erase(unanswered, run) == 0;
  }
};

SessionBus::SessionBus(std::chrono::nanoseconds timeout, std::function<void()> beforehand)
    : timeout_(timeout),
      runs_(std::make_unique<Runs>()),
      thread_(std::make_unique<BusThread>(nullptr, std::move(beforehand))) {}

SessionBus::~SessionBus() { finish(); }

void SessionBus::flush() {
  thread_->flush(runs_->lastWasAnswered ? timeout_ : std::chrono::nanoseconds(0));
}

void SessionBus::finish() {
  thread_->finish(runs_->lastWasAnswered ? timeout_ : std::chrono::nanoseconds(0));
}

platform::Task<void> SessionBus::asOneRun(platform::Task<void> run) {
  struct Ending {  // whatever happens
    Runs& runs;
    asio::any_io_executor executor;

    Ending(Runs& all, asio::any_io_executor its) : runs(all), executor(std::move(its)) {}
    ~Ending() { runs.end(executor); }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
  };

  asio::any_io_executor executor = co_await asio::this_coro::executor;
  const Ending ending(*runs_, std::move(executor));
  co_await std::move(run);
}

bool SessionBus::isMissing(const asio::any_io_executor& executor) {
  const std::lock_guard lock(runs_->mutex);
  const auto& missing = runs_->unanswered;
  return std::find(missing.begin(), missing.end(), executor) != missing.end();
}

void SessionBus::setMissing(const asio::any_io_executor& executor) {
  const std::lock_guard lock(runs_->mutex);
  runs_->unanswered.push_back(executor);
}

}  // namespace kivo::linux_platform
