#include "platform/linux/user_notifications/notification_display.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_names.h"
#include "platform/linux/user_notifications/desktop_wire.h"

namespace kivo::linux_platform {

struct NotificationDisplay::State {
  std::vector<std::string> capabilities;
  mutable std::mutex mutex;
  std::condition_variable added;
  std::vector<ShownNotification> shown;  // guarded by mutex
  std::unique_ptr<sdbus::IConnection> connection;
  std::unique_ptr<sdbus::IObject> server;

  std::uint32_t add(ShownNotification notification) {
    const std::lock_guard lock(mutex);
    notification.id = static_cast<std::uint32_t>(shown.size() + 1);
    notification.shownAt = std::chrono::steady_clock::now();
    shown.push_back(std::move(notification));
    added.notify_all();
    return shown.back().id;
  }
};

namespace {

using Hints = std::map<std::string, sdbus::Variant>;

std::map<std::string, std::string> texts(const Hints& hints) {
  std::map<std::string, std::string> result;
  for (const auto& [name, value] : hints) {
    result[name] = value.containsValueOfType<std::string>() ? value.get<std::string>() : "";
  }
  return result;
}

// For as long as its connection.
template <typename State>
std::unique_ptr<sdbus::IObject> makeServer(sdbus::IConnection& connection, State* state) {
  const BusObject& desktop = bus_names::desktopNotifications;
  std::unique_ptr<sdbus::IObject> server = sdbus::createObject(connection, desktop.path);
  server->registerMethod(desktop_wire::getCapabilities)
      .onInterface(desktop.interface)
      .implementedAs([state] { return state->capabilities; });
  server->registerMethod(desktop_wire::notify)
      .onInterface(desktop.interface)
      .implementedAs([state](const std::string& appName, std::uint32_t replaces,
                             const std::string& icon, const std::string& summary,
                             const std::string& body, const std::vector<std::string>& actions,
                             const Hints& hints, std::int32_t expiresAfter) {
        return state->add({.appName = appName,
                           .replaces = replaces,
                           .icon = icon,
                           .summary = summary,
                           .body = body,
                           .actions = actions,
                           .hints = texts(hints),
                           .expiresAfter = expiresAfter,
                           .shownAt = {}});
      });
  server->registerSignal(desktop_wire::actionInvoked)
      .onInterface(desktop.interface)
      .template withParameters<std::uint32_t, std::string>();
  server->registerSignal(desktop_wire::notificationClosed)
      .onInterface(desktop.interface)
      .template withParameters<std::uint32_t, std::uint32_t>();
  server->finishRegistration();
  connection.requestName(desktop.service);
  return server;
}

}  // namespace

NotificationDisplay::NotificationDisplay(const std::string& address,
                                         std::vector<std::string> capabilities)
    : state_(std::make_unique<State>()) {
  state_->capabilities = std::move(capabilities);
  try {
    state_->connection = sdbus::createSessionBusConnectionWithAddress(address);
    state_->server = makeServer(*state_->connection, state_.get());
    state_->connection->enterEventLoopAsync();
  } catch (const sdbus::Error&) {
    throw std::runtime_error("cannot show notifications on the bus at " + address);
  }
}

NotificationDisplay::~NotificationDisplay() { state_->connection->leaveEventLoop(); }

std::vector<ShownNotification> NotificationDisplay::shown() const {
  const std::lock_guard lock(state_->mutex);
  return state_->shown;
}

std::vector<ShownNotification> NotificationDisplay::waitForShown(std::size_t count,
                                                                 std::chrono::milliseconds limit) {
  std::unique_lock lock(state_->mutex);
  state_->added.wait_for(lock, limit, [&] { return state_->shown.size() >= count; });
  return state_->shown;
}

void NotificationDisplay::invokeDefaultAction(std::uint32_t id) {
  const char* const interface = bus_names::desktopNotifications.interface;
  state_->server->emitSignal(desktop_wire::actionInvoked)
      .onInterface(interface)
      .withArguments(id, std::string(desktop_wire::defaultAction));
  state_->server->emitSignal(desktop_wire::notificationClosed)
      .onInterface(interface)
      .withArguments(id, desktop_wire::closedByPerson);
}

}  // namespace kivo::linux_platform
