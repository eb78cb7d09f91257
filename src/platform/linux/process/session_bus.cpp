#include "platform/linux/process/session_bus.h"

#include <algorithm>
#include <atomic>
#include <list>
#include <mutex>
#include <utility>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/this_coro.hpp>

#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;

std::chrono::nanoseconds WaitingBudget::left() const {
  return std::max(left_, std::chrono::nanoseconds(0));
}

// A run is known by its executor: every task is started on a strand of its own, which all that it
// awaits shares with it and no other task does.
struct SessionBus::Runs {
  struct Run {
    asio::any_io_executor executor;
    WaitingBudget budget;
  };

  explicit Runs(std::chrono::nanoseconds patience) : leftByTheLast(patience.count()) {}

  std::mutex mutex;
  std::list<Run> underWay;  // guarded by the mutex, but for what a run does to its own budget
  std::atomic<std::chrono::nanoseconds::rep> leftByTheLast;
};

SessionBus::SessionBus(std::chrono::nanoseconds patience, std::function<void()> beforehand)
    : patience_(patience),
      runs_(std::make_unique<Runs>(patience)),
      thread_(std::make_unique<BusThread>(nullptr, std::move(beforehand))) {}

SessionBus::~SessionBus() { finish(); }

void SessionBus::flush() { thread_->flush(std::chrono::nanoseconds(runs_->leftByTheLast)); }

void SessionBus::finish() { thread_->finish(std::chrono::nanoseconds(runs_->leftByTheLast)); }

platform::Task<void> SessionBus::asOneRun(platform::Task<void> run) {
  // Enters the run, and leaves it whatever happens.
  struct UnderWay {
    Runs& runs;
    std::list<Runs::Run>::iterator place;

    UnderWay(Runs& all, asio::any_io_executor executor, std::chrono::nanoseconds patience)
        : runs(all) {
      const std::lock_guard lock(runs.mutex);
      place =
          runs.underWay.insert(runs.underWay.end(), {std::move(executor), WaitingBudget(patience)});
    }
    ~UnderWay() {
      const std::lock_guard lock(runs.mutex);
      runs.leftByTheLast = place->budget.left().count();
      runs.underWay.erase(place);
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
  };

  asio::any_io_executor executor = co_await asio::this_coro::executor;
  const UnderWay underWay(*runs_, std::move(executor), patience_);
  co_await std::move(run);
}

WaitingBudget* SessionBus::budgetOf(const asio::any_io_executor& executor) {
  const std::lock_guard lock(runs_->mutex);
  const auto found = std::find_if(runs_->underWay.begin(), runs_->underWay.end(),
                                  [&](const Runs::Run& run) { return run.executor == executor; });
  return found == runs_->underWay.end() ? nullptr : &found->budget;
}

}  // namespace kivo::linux_platform
