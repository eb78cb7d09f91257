#include "platform/linux/bus/bus_thread.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/bus/bus_call.h"
#include "platform/linux/bus/bus_loop.h"
#include "platform/linux/concurrency/background_thread.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {

struct BusThread::State {
  explicit State(Settings given) : settings(std::move(given)) {}

  std::mutex mutex;
  std::condition_variable changed;  // closed or threadEnded
  const Settings settings;
  // The rest is guarded by the mutex.
  std::deque<Step> steps;
  BusLoop* loop = nullptr;  // while connected
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

  // Returns false when `finish` has given up on the connection.
  bool setLoop(BusLoop* connected) {
    const std::lock_guard lock(mutex);
    loop = connected;
    return !closed;
  }

  // Once connected, a step takes microseconds, so it gets the time for that even when the caller's
  // timeout is over. The caller must hold the mutex.
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

void perform(const std::deque<BusThread::Step>& steps, DBusConnection* connection) {
  for (const BusThread::Step& step : steps) step(connection);
}

}  // namespace

BusThread::BusThread(Settings settings) : state_(std::make_shared<State>(std::move(settings))) {
  dbus_threads_init_default();  // the first use of libdbus is not thread-safe
  try {
    state_->thread = startBackgroundThread([state = state_] {
      if (state->settings.beforehand) state->settings.beforehand();
      serve(*state);
    });
  } catch (const std::system_error&) {
    state_->closed = true;
  }
}

BusThread::~BusThread() { finish(std::chrono::nanoseconds(0)); }

void BusThread::serve(State& state) {
  try {
    const auto& address = state.settings.address;
    const BusConnection bus = address ? connectToBus(*address) : connectToSessionBus();
    if (bus) serveConnection(state, bus.get());
  } catch (const std::exception&) {
    // No file descriptor or memory is left: treated as if there were no bus.
  }
  perform(state.closeAndTakeSteps(), nullptr);

  const std::lock_guard lock(state.mutex);
  if (state.settings.onGone && !state.finishing) state.settings.onGone();
  state.threadEnded = true;
  state.changed.notify_all();
}

void BusThread::serveConnection(State& state, DBusConnection* bus) {
  BusLoop loop(bus);
  if (state.setLoop(&loop)) {
    loop.run([&]() -> std::optional<std::chrono::milliseconds> {
      const bool last =
          state.isFinishing();  // asked first, so that all steps posted before are done
      perform(state.takeSteps(), bus);
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
      if (state_->loop != nullptr) state_->loop->wake();
      return;
    }
  }
  perform({std::move(step)}, nullptr);
}

void BusThread::performAndWait(Step step, std::chrono::milliseconds timeout) {
  const auto ending = std::make_shared<std::promise<void>>();
  std::future<void> ended = ending->get_future();
  post([step = std::move(step), ending](DBusConnection* bus) {
    try {
      if (bus == nullptr) throw Failure("there is no session bus");
      step(bus);
      ending->set_value();
    } catch (...) {
      ending->set_exception(std::current_exception());
    }
  });
  if (ended.wait_for(timeout) != std::future_status::ready) {
    throw Failure("the session bus does not answer");
  }
  ended.get();
}

void BusThread::send(const BusMessage& message) {
  post([message](DBusConnection* bus) {
    if (bus != nullptr) dbus_connection_send(bus, message.get(), nullptr);
  });
}

void BusThread::call(const BusMessage& message, std::chrono::milliseconds timeout,
                     std::function<void(const BusMessage&)> onReply) {
  post([message, timeout, onReply = std::move(onReply)](DBusConnection* bus) {
    if (bus == nullptr) return onReply(nullptr);
    sendCall(bus, message, timeout, onReply);
  });
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
  perform(state_->closeAndTakeSteps(), nullptr);
}

}  // namespace kivo::linux_platform
