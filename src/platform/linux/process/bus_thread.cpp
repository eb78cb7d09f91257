#include "platform/linux/process/bus_thread.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include <sys/time.h>

namespace kivo::linux_platform {

using Clock = std::chrono::steady_clock;

struct BusThread::State {
  std::mutex mutex;
  std::condition_variable ended;
  // All guarded by the mutex.
  std::function<void()> onGone;
  std::deque<Step> steps;
  BusLoop* loop = nullptr;  // while the connection stands
  bool asked = false;       // a step was posted
  bool finishing = false;
  Clock::time_point sendUntil;  // once it is finishing
  bool closed = false;          // steps are called with null from now on
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

  // How long what was sent may still wait to go out; zero when nobody has sent anything.
  Clock::duration timeToSend() {
    const std::lock_guard lock(mutex);
    return asked ? sendUntil - Clock::now() : Clock::duration(0);
  }
};

namespace {

void call(const std::deque<BusThread::Step>& steps, DBusConnection* connection) {
  for (const BusThread::Step& step : steps) step(connection);
}

// While it lives, a wait of this thread is interrupted within two seconds: a bus whose queue of
// those who want in is full holds whoever connects until it takes them. Interrupted again and
// again, since the first time may come before the wait.
class Interruption {
 public:
  Interruption() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    setEvery({.tv_sec = 1, .tv_usec = 0});
  }
  ~Interruption() { setEvery({}); }
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  static void setEvery(timeval pause) {
    const itimerval timer{.it_interval = pause, .it_value = pause};
    setitimer(ITIMER_REAL, &timer, nullptr);
  }
};

BusConnection openInterruptibly() {
  const Interruption interruption;
  return openSessionBus();
}

}  // namespace

BusThread::BusThread(std::function<void()> onGone) : BusThread(Lent()) {
  state_->onGone = std::move(onGone);
  state_->thread = std::thread([state = state_] {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // a stop signal is the main thread's business
    serve(*state, connectToSessionBus());
  });
}

BusThread::BusThread(Lent) : state_(std::make_shared<State>()) {}

BusThread::~BusThread() {
  finish(std::chrono::nanoseconds(0));
  call(state_->closeAndTakeSteps(), nullptr);
}

void BusThread::serve() { serve(*state_, openInterruptibly()); }

void BusThread::serve(State& state, const BusConnection& bus) {
  try {
    if (bus) serveConnection(state, bus.get());
  } catch (const std::exception&) {
    // No descriptor or no memory is left to serve it with: as if there were no bus.
  }
  call(state.closeAndTakeSteps(), nullptr);

  const std::lock_guard lock(state.mutex);
  if (state.onGone && !state.finishing) state.onGone();
  state.threadEnded = true;
  state.ended.notify_all();
}

void BusThread::serveConnection(State& state, DBusConnection* bus) {
  BusLoop loop(eventsOf(bus));
  if (state.setLoop(&loop)) {
    loop.run([&]() -> std::optional<std::chrono::milliseconds> {
      const bool last = state.isFinishing();  // asked first: what was posted before is done
      call(state.takeSteps(), bus);
      if (!last) return std::nullopt;
      const auto left = hasUnsent(bus) ? state.timeToSend() : Clock::duration(0);
      if (left <= Clock::duration(0)) loop.stop();
      return std::chrono::ceil<std::chrono::milliseconds>(left);
    });
  }
  state.setLoop(nullptr);
  dropUnsent(bus);
}

void BusThread::post(Step step) {
  {
    const std::lock_guard lock(state_->mutex);
    if (!state_->closed && !state_->finishing) {
      state_->steps.push_back(std::move(step));
      state_->asked = true;
      if (state_->loop != nullptr) state_->loop->wake();
      return;
    }
  }
  call({std::move(step)}, nullptr);
}

void BusThread::finish(std::chrono::nanoseconds limit) {
  // With the connection standing, a step is a matter of microseconds: it gets the time for that
  // even when the caller has no patience left.
  constexpr std::chrono::nanoseconds handover = std::chrono::milliseconds(50);

  std::unique_lock lock(state_->mutex);
  if (std::exchange(state_->finishing, true)) return;
  if (state_->loop != nullptr || state_->closed) limit = std::max(limit, handover);
  state_->sendUntil = Clock::now() + limit;
  if (state_->loop != nullptr) state_->loop->wake();
  if (!state_->thread.joinable()) return;

  const bool worthWaiting = state_->loop != nullptr || state_->closed || state_->asked;
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
