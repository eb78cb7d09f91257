#include "platform/linux/widget_kit/widget_reload_listener.h"

#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include <dbus/dbus.h>

#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {
namespace {

std::string reloadSignals() {
  const BusObject& center = bus_names::widgetCenter;
  return std::string("type='signal',path='") + center.path + "',interface='" + center.interface +
         "',member='" + bus_names::reloadAllTimelines + "'";
}

using Heard = std::function<void()>;

// As the bus library calls who looks at all that comes, and who need not any more.
DBusHandlerResult hearReload(DBusConnection*, DBusMessage* message, void* heard) {
  const BusObject& center = bus_names::widgetCenter;
  if (dbus_message_is_signal(message, center.interface, bus_names::reloadAllTimelines) &&
      dbus_message_has_path(message, center.path)) {
    (*static_cast<Heard*>(heard))();
  }
  return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}
void endHearing(void* heard) { delete static_cast<Heard*>(heard); }

// Yields whether reload signals come from now on.
bool listen(DBusConnection* bus, Heard onReload) {
  auto heard = std::make_unique<Heard>(std::move(onReload));
  if (!dbus_connection_add_filter(bus, hearReload, heard.get(), endHearing)) return false;
  static_cast<void>(heard.release());  // the connection's from now on
  DBusError error = DBUS_ERROR_INIT;   // with which the bus's answer is waited for
  dbus_bus_add_match(bus, reloadSignals().c_str(), &error);
  const bool added = !dbus_error_is_set(&error);
  dbus_error_free(&error);
  return added;
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
  bus_->post([tell, listening](DBusConnection* connection) {
    listening->set_value(connection != nullptr &&
                         listen(connection, [tell] { tell(&State::reloadAsked); }));
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
