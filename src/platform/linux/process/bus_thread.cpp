#include "platform/linux/process/bus_thread.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace kivo::linux_platform {

struct BusThread::State {
  std::mutex mutex;
  std::condition_variable ended;
  // All guarded by the mutex.
  std::function<void()> onGone;
  std::deque<Step> steps;
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
    return std::exchange(steps, {});
  }

  // Yields whether somebody still wants the connection.
  bool setLoop(BusLoop* standing) {
    const std::lock_guard lock(mutex);
    loop = standing;
    return !closed;
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

BusThread::BusThread(std::function<void()> onGone) : state_(std::make_shared<State>()) {
  state_->onGone = std::move(onGone);
  state_->thread = std::thread([state = state_] {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // a stop signal is the main thread's business
    serve(state);
  });
}

BusThread::~BusThread() { finish(std::chrono::nanoseconds(0)); }

void BusThread::serve(const std::shared_ptr<State>& state) {
  if (const BusConnection bus = connectToSessionBus()) {
    BusLoop loop(eventsOf(bus.get()));
    if (state->setLoop(&loop)) {
      loop.run([&]() -> std::optional<std::chrono::milliseconds> {
        const bool last = state->isFinishing();  // asked first: what was posted before is done
        call(state->takeSteps(), bus.get());
        if (last) loop.stop();
        return std::nullopt;
      });
    }
    state->setLoop(nullptr);
  }
  call(state->closeAndTakeSteps(), nullptr);

  const std::lock_guard lock(state->mutex);
  if (state->onGone && !state->finishing) state->onGone();
  state->threadEnded = true;
  state->ended.notify_all();
}

void BusThread::post(Step step) {
  {
    const std::lock_guard lock(state_->mutex);
    if (!state_->closed && !state_->finishing) {
      state_->steps.push_back(std::move(step));
      if (state_->loop != nullptr) state_->loop->wake();
      return;
    }
  }
  call({std::move(step)}, nullptr);
}

void BusThread::finish(std::chrono::nanoseconds limit) {
  std::unique_lock lock(state_->mutex);
  if (!state_->thread.joinable()) return;
  state_->finishing = true;
  if (state_->loop != nullptr) state_->loop->wake();

  // With the connection standing, a step is a matter of microseconds: it gets the time for that
  // even when the caller has no patience left.
  constexpr std::chrono::nanoseconds handover = std::chrono::milliseconds(50);
  if (state_->loop != nullptr || state_->closed) limit = std::max(limit, handover);
  const bool worthWaiting = state_->loop != nullptr || state_->closed || !state_->steps.empty();
  if (worthWaiting) state_->ended.wait_for(lock, limit, [this] { return state_->threadEnded; });

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
