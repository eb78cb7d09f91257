#include "platform/linux/process/bus_thread.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace kivo::linux_platform {

struct BusThread::State {
  std::mutex mutex;
  std::condition_variable changed;  // allSent, closed or threadEnded
  // All guarded by the mutex.
  std::function<void()> onGone;
  std::deque<Step> steps;
  bool allSent = true;      // as far as posted
  BusLoop* loop = nullptr;  // while the connection stands
  bool finishing = false;
  bool closed = false;  // steps are called with null from now on
  bool threadEnded = false;
  std::thread thread;

  std::deque<Step> takeSteps() {
    const std::lock_guard lock(mutex);
    return std::exchange(steps, {});
  }

  std::deque<Step> closeAndTakeSteps() {
    const std::lock_guard lock(mutex);
    closed = true;
    changed.notify_all();
    return std::exchange(steps, {});
  }

  // Yields whether somebody still wants the connection.
  bool setLoop(BusLoop* standing) {
    const std::lock_guard lock(mutex);
    loop = standing;
    return !closed;
  }

  void tellSent(bool all) {
    const std::lock_guard lock(mutex);
    if (!steps.empty()) return;
    allSent = all;
    changed.notify_all();
  }

  // With the connection standing, a step is a matter of microseconds: it gets the time for that
  // even when the caller has no patience left. With the mutex held.
  [[nodiscard]] std::chrono::nanoseconds timeFor(std::chrono::nanoseconds limit) const {
    constexpr std::chrono::nanoseconds handover = std::chrono::milliseconds(50);
    return loop != nullptr || closed ? std::max(limit, handover) : limit;
  }

  bool isFinishing() {
    const std::lock_guard lock(mutex);
    return finishing;
  }
};

namespace {

void call(const std::deque<BusThread::Step>& steps, DBusConnection* connection) {
  for (const BusThread::Step& step : steps) step(connection);
}

}  // namespace

BusThread::BusThread(std::function<void()> onGone, std::function<void()> beforehand)
    : state_(std::make_shared<State>()) {
  state_->onGone = std::move(onGone);
  try {
    state_->thread = std::thread([state = state_, beforehand = std::move(beforehand)] {
      sigset_t all;
      sigfillset(&all);
      pthread_sigmask(SIG_BLOCK, &all, nullptr);  // a stop signal is the main thread's business
      if (beforehand) beforehand();
      serve(*state);
    });
  } catch (const std::system_error&) {
    state_->closed = true;
  }
}

BusThread::~BusThread() { finish(std::chrono::nanoseconds(0)); }

void BusThread::serve(State& state) {
  try {
    if (const BusConnection bus = connectToSessionBus()) serveConnection(state, bus.get());
  } catch (const std::exception&) {
    // No descriptor or no memory is left to serve it with: as if there were no bus.
  }
  call(state.closeAndTakeSteps(), nullptr);

  const std::lock_guard lock(state.mutex);
  if (state.onGone && !state.finishing) state.onGone();
  state.threadEnded = true;
  state.changed.notify_all();
}

void BusThread::serveConnection(State& state, DBusConnection* bus) {
  BusLoop loop(eventsOf(bus));
  if (state.setLoop(&loop)) {
    loop.run([&]() -> std::optional<std::chrono::milliseconds> {
      const bool last = state.isFinishing();  // asked first: what was posted before is done
      call(state.takeSteps(), bus);
      state.tellSent(!hasUnsent(bus));
      if (last) loop.stop();
      return std::nullopt;
    });
  }
  state.setLoop(nullptr);
}

void BusThread::post(Step step) {
  {
    const std::lock_guard lock(state_->mutex);
    if (!state_->closed && !state_->finishing) {
      state_->steps.push_back(std::move(step));
      state_->allSent = false;
      if (state_->loop != nullptr) state_->loop->wake();
      return;
    }
  }
  call({std::move(step)}, nullptr);
}

void BusThread::flush(std::chrono::nanoseconds limit) {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait_for(lock, state_->timeFor(limit),
                           [this] { return state_->allSent || state_->closed; });
}

void BusThread::finish(std::chrono::nanoseconds limit) {
  std::unique_lock lock(state_->mutex);
  if (!state_->thread.joinable()) return;
  state_->finishing = true;
  if (state_->loop != nullptr) state_->loop->wake();

  const bool worthWaiting = state_->loop != nullptr || state_->closed || !state_->steps.empty();
  if (worthWaiting) {
    state_->changed.wait_for(lock, state_->timeFor(limit), [this] { return state_->threadEnded; });
  }

  if (state_->threadEnded) {
    lock.unlock();
    state_->thread.join();
    return;
  }
  state_->thread.detach();
  lock.unlock();
  call(state_->closeAndTakeSteps(), nullptr);
}

}  // namespace kivo::linux_platform
