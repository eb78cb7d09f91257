#include "testkit/gate.h"

#include <chrono>
#include <cstdlib>

#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace kivo::testkit {
namespace asio = boost::asio;

// A timer that never rings: cancelling it is what wakes the task.
struct Gate::Waiter : std::enable_shared_from_this<Gate::Waiter> {
  explicit Waiter(const asio::any_io_executor& executor)
      : timer(executor, asio::steady_timer::time_point::max()) {}

  asio::steady_timer timer;
  bool released = false;  // written and read by the task's own steps only
};

void Gate::close() {
  const std::lock_guard lock(mutex_);
  isOpen_ = false;
}

void Gate::open() {
  const std::lock_guard lock(mutex_);
  isOpen_ = true;
  for (const auto& waiter : held_) release(*waiter);
  held_.clear();
}

void Gate::letOneThrough() {
  const std::lock_guard lock(mutex_);
  if (held_.empty()) std::abort();
  release(*held_.front());
  held_.erase(held_.begin());
}

// Released as one more step of the task, so that a cancellation that came before is seen before.
void Gate::release(Waiter& waiter) {
  asio::post(waiter.timer.get_executor(), [kept = waiter.shared_from_this()] {
    kept->released = true;
    kept->timer.cancel();
  });
}

void Gate::waitForArrivals(std::size_t count) {
  std::unique_lock lock(mutex_);
  const auto enough = [&] { return arrivals_ >= count; };
  if (!arrived_.wait_for(lock, std::chrono::seconds(60), enough)) std::abort();
}

platform::Task<void> Gate::pass() { co_await hold(WhenCancelled::wait); }

platform::Task<bool> Gate::passUnlessCancelled() { return hold(WhenCancelled::leave); }

std::shared_ptr<Gate::Waiter> Gate::arrive(const asio::any_io_executor& executor) {
  auto waiter = std::make_shared<Waiter>(executor);
  const std::lock_guard lock(mutex_);
  if (isOpen_) {
    waiter->released = true;
  } else {
    held_.push_back(waiter);
    ++arrivals_;
    arrived_.notify_all();
  }
  return waiter;
}

platform::Task<bool> Gate::hold(WhenCancelled whenCancelled) {
  const asio::any_io_executor executor = co_await asio::this_coro::executor;
  const std::shared_ptr<Waiter> waiter = arrive(executor);
  while (true) {
    const asio::cancellation_state state = co_await asio::this_coro::cancellation_state;
    const bool cancelled = state.cancelled() != asio::cancellation_type::none;
    if (cancelled && whenCancelled == WhenCancelled::leave) break;
    if (waiter->released) co_return true;
    boost::system::error_code woken;
    co_await waiter->timer.async_wait(asio::redirect_error(asio::use_awaitable, woken));
  }
  {
    const std::lock_guard lock(mutex_);
    std::erase(held_, waiter);
  }
  co_return false;
}

}  // namespace kivo::testkit
