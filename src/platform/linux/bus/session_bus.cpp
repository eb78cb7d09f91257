#include "platform/linux/bus/session_bus.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/bus_thread.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;

using Clock = std::chrono::steady_clock;

// A run is known by its executor: every task starts on a strand of its own, which everything that
// it awaits shares and no other task does.
struct SessionBus::Runs {
  std::mutex mutex;
  std::vector<asio::any_io_executor> timedOut;  // guarded by the mutex
  std::atomic<bool> lastWasAnswered = true;

  void end(const asio::any_io_executor& run) {
    const std::lock_guard lock(mutex);
    lastWasAnswered = std::erase(timedOut, run) == 0;
  }
  bool hasTimedOut(const asio::any_io_executor& run) {
    const std::lock_guard lock(mutex);
    return std::find(timedOut.begin(), timedOut.end(), run) != timedOut.end();
  }
  void setTimedOut(const asio::any_io_executor& run) {
    const std::lock_guard lock(mutex);
    timedOut.push_back(run);
  }
};

namespace {

// Hands a reply from the bus's thread to the task that waits for it. The reply may come long after
// the task, and with it its executor, has ended.
class AwaitedReply {
 public:
  // Throws boost::system::system_error when no file descriptor is left for the timer.
  AwaitedReply(const asio::any_io_executor& executor, Clock::time_point end)
      : timer_(std::in_place, executor, end) {}

  // Called on the bus's thread. Ends the wait on the task's own strand, so never before it begins.
  void give(const std::shared_ptr<AwaitedReply>& self, BusMessage reply) {
    const std::lock_guard lock(mutex_);
    if (!timer_) return;
    reply_ = std::move(reply);
    asio::post(timer_->get_executor(), [self] { self->wake(); });
  }

  // The rest is called on the task's strand.
  asio::steady_timer& timer() { return *timer_; }
  bool waits() {
    const std::lock_guard lock(mutex_);
    return !reply_ && Clock::now() < timer_->expiry();
  }
  // Returns the reply; nullopt when none came in time.
  std::optional<BusMessage> leave() {
    const std::lock_guard lock(mutex_);
    timer_.reset();
    return std::move(reply_);
  }

 private:
  void wake() {
    const std::lock_guard lock(mutex_);
    if (timer_) timer_->cancel();
  }

  std::mutex mutex_;
  std::optional<asio::steady_timer> timer_;
  std::optional<BusMessage> reply_;
};

std::shared_ptr<AwaitedReply> awaitedReply(const asio::any_io_executor& executor,
                                           Clock::time_point end) {
  try {
    return std::make_shared<AwaitedReply>(executor, end);
  } catch (const boost::system::system_error&) {
    return nullptr;
  }
}

}  // namespace

SessionBus::SessionBus(std::chrono::nanoseconds timeout, std::function<void()> beforehand)
    : timeout_(timeout),
      runs_(std::make_unique<Runs>()),
      thread_(
          std::make_unique<BusThread>(BusThread::Settings{.beforehand = std::move(beforehand)})) {}

SessionBus::~SessionBus() { finish(); }

platform::Task<BusMessage> SessionBus::call(BusMessage call) {
  const asio::any_io_executor run = co_await asio::this_coro::executor;
  if (runs_->hasTimedOut(run)) co_return nullptr;
  const auto awaited = awaitedReply(run, Clock::now() + timeout_);
  if (!awaited) co_return nullptr;
  thread_->call(call, usualCallTimeout,
                [awaited](const BusMessage& reply) { awaited->give(awaited, reply); });

  // Cancelling the task ends one wait of the timer, after which it waits again.
  while (awaited->waits()) {
    boost::system::error_code ignored;
    co_await awaited->timer().async_wait(asio::redirect_error(asio::use_awaitable, ignored));
  }
  const std::optional<BusMessage> reply = awaited->leave();
  if (!reply) runs_->setTimedOut(run);
  co_return reply.value_or(nullptr);
}

BusMessage SessionBus::callAndWait(const BusMessage& call) {
  const auto answered = std::make_shared<std::promise<BusMessage>>();
  std::future<BusMessage> answer = answered->get_future();
  thread_->call(call, usualCallTimeout,
                [answered](const BusMessage& reply) { answered->set_value(reply); });
  runs_->lastWasAnswered = answer.wait_for(timeout_) == std::future_status::ready;
  return runs_->lastWasAnswered ? answer.get() : nullptr;
}

void SessionBus::send(const BusMessage& signal) { thread_->send(signal); }

void SessionBus::finish() {
  thread_->finish(runs_->lastWasAnswered ? timeout_ : std::chrono::nanoseconds(0));
}

platform::Task<void> SessionBus::asOneRun(platform::Task<void> run) {
  struct Ending {  // also when the run throws
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

}  // namespace kivo::linux_platform
