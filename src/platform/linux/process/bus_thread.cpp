#include "platform/linux/process/bus_thread.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_loop.h"

namespace kivo::linux_platform {

StandingConnection::~StandingConnection() = default;

sdbus::IProxy& StandingConnection::proxy(const BusObject& object) {
  std::unique_ptr<sdbus::IProxy>& proxy = proxies_[std::string(object.service) + object.path];
  if (!proxy) proxy = sdbus::createProxy(connection_, object.service, object.path);
  return *proxy;
}

struct BusThread::State {
  Connect connect;
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

void call(const std::deque<BusThread::Step>& steps, StandingConnection* connection) {
  for (const BusThread::Step& step : steps) {
    try {
      step(connection);
    } catch (const sdbus::Error&) {
      // Whoever must know has handled it in the step; a signal that could not be sent is lost.
    }
  }
}

std::unique_ptr<sdbus::IConnection> connected(const BusThread::Connect& connect) {
  try {
    return connect();
  } catch (const sdbus::Error&) {
    return nullptr;
  }
}

}  // namespace

BusThread::BusThread(Connect connect, std::function<void()> onGone)
    : state_(std::make_shared<State>()) {
  state_->connect = std::move(connect);
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
  if (std::unique_ptr<sdbus::IConnection> connection = connected(state->connect)) {
    BusLoop loop(std::move(connection));
    StandingConnection standing(loop.connection());
    if (state->setLoop(&loop)) {
      loop.run([&]() -> std::optional<std::chrono::milliseconds> {
        const bool last = state->isFinishing();  // asked first: what was posted before is done
        call(state->takeSteps(), &standing);
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
