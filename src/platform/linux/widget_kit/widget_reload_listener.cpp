#include "platform/linux/widget_kit/widget_reload_listener.h"

#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include <systemd/sd-bus.h>

#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace {

std::string reloadSignals() {
  const BusObject& center = bus_names::widgetCenter;
  return std::string("type='signal',path='") + center.path + "',interface='" + center.interface +
         "',member='" + bus_names::reloadAllTimelines + "'";
}

using Heard = std::function<void()>;

// As the bus library calls who waits for a signal.
int hearReload(sd_bus_message*, void* heard, sd_bus_error*) {
  (*static_cast<Heard*>(heard))();
  return 0;
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
  bus_ = std::make_unique<BusThread>([tell] { tell(&State::lost); });

  const auto listening = std::make_shared<std::promise<bool>>();
  std::future<bool> answer = listening->get_future();
  bus_->post([tell, listening](StandingConnection* standing) {
    if (standing == nullptr) return listening->set_value(false);
    const auto heard = std::make_shared<Heard>([tell] { tell(&State::reloadAsked); });
    standing->keep(heard);
    listening->set_value(sd_bus_add_match(standing->bus(), nullptr, reloadSignals().c_str(),
                                          hearReload, heard.get()) >= 0);
  });
  constexpr std::chrono::seconds patience(5);
  if (answer.wait_for(patience) != std::future_status::ready || !answer.get()) {
    throw std::runtime_error("there is no session bus to hear reload signals on");
  }
}

WidgetReloadListener::~WidgetReloadListener() { bus_->finish(std::chrono::seconds(1)); }

bool WidgetReloadListener::waitForReload(std::chrono::milliseconds limit) {
  std::unique_lock lock(state_->mutex);
  State& state = *state_;
  state.changed.wait_for(lock, limit,
                         [&state] { return state.reloadAsked || state.stopped || state.lost; });
  if (state.stopped || state.lost) return false;
  return std::exchange(state.reloadAsked, false);
}

void WidgetReloadListener::stop() { state_->set(&State::stopped); }

bool WidgetReloadListener::lost() const {
  const std::lock_guard lock(state_->mutex);
  return state_->lost;
}

}  // namespace kivo::linux_platform
