#include "phone/widget_reload_listener.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

#include "platform/linux/bus/bus_signal.h"
#include "platform/linux/bus/bus_thread.h"
#include "platform/linux/bus/widget_center_interface.h"

namespace kivo {

namespace widget_center_interface = linux_platform::widget_center_interface;
using linux_platform::BusObject;
using linux_platform::BusThread;
using linux_platform::HeardSignal;
using linux_platform::subscribe;

namespace {

void subscribeToReloads(DBusConnection* bus, std::function<void()> onReload) {
  const BusObject& center = widget_center_interface::object;
  subscribe(bus,
            {.interface = center.interface,
             .member = widget_center_interface::reloadAllTimelines,
             .path = center.path},
            [onReload = std::move(onReload)](const HeardSignal&) { onReload(); });
}

}  // namespace

struct WidgetReloadListener::State {
  mutable std::mutex mutex;
  std::condition_variable changed;
  bool reloadAsked = false;
  bool stopped = false;
  bool lost = false;

  void set(bool State::*what) {
    const std::lock_guard lock(mutex);
    this->*what = true;
    changed.notify_all();
  }
};

WidgetReloadListener::WidgetReloadListener() : state_(std::make_shared<State>()) {
  const std::weak_ptr<State> weak = state_;
  const auto tell = [weak](bool State::*what) {
    if (const auto state = weak.lock()) state->set(what);
  };
  bus_ = std::make_unique<BusThread>(BusThread::Settings{.onGone = [tell] { tell(&State::lost); }});

  bus_->performAndWait(
      [tell](DBusConnection* bus) {
        subscribeToReloads(bus, [tell] { tell(&State::reloadAsked); });
      },
      std::chrono::seconds(5));
}

WidgetReloadListener::~WidgetReloadListener() { bus_->finish(std::chrono::seconds(1)); }

bool WidgetReloadListener::waitForReload(std::chrono::milliseconds timeout) {
  std::unique_lock lock(state_->mutex);
  State& state = *state_;
  state.changed.wait_for(lock, timeout,
                         [&state] { return state.reloadAsked || state.stopped || state.lost; });
  if (state.stopped || state.lost) return false;
  return std::exchange(state.reloadAsked, false);
}

void WidgetReloadListener::stop() { state_->set(&State::stopped); }

bool WidgetReloadListener::lost() const {
  const std::lock_guard lock(state_->mutex);
  return state_->lost;
}

}  // namespace kivo
