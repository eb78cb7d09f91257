#include "demo/notification_display.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "platform/linux/bus/bus_thread.h"
#include "platform/linux/bus/desktop_notifications_interface.h"
#include "platform/linux/bus/served_object.h"

namespace kivo {

namespace desktop_notifications_interface = linux_platform::desktop_notifications_interface;
using linux_platform::BusAnswer;
using linux_platform::BusMessage;
using linux_platform::BusMethod;
using linux_platform::BusObject;
using linux_platform::BusReader;
using linux_platform::BusThread;
using linux_platform::BusWriter;
using linux_platform::ownedMessage;
using linux_platform::serveObject;

using linux_platform::takeBusName;

struct NotificationDisplay::State {
  std::vector<std::string> capabilities;
  mutable std::mutex mutex;
  std::condition_variable added;
  std::vector<ShownNotification> shown;  // guarded by mutex

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

constexpr const BusObject& desktop = desktop_notifications_interface::object;

std::map<std::string, std::string> textsOf(BusReader hints) {
  std::map<std::string, std::string> result;
  for (; !hints.atEnd(); hints.skip()) {
    BusReader hint = hints.inside();
    const std::string name(*hint.text());
    result[name] = hint.inside().text().value_or("");
  }
  return result;
}

ShownNotification readNotification(BusReader arguments) {
  ShownNotification notification;
  notification.appName = *arguments.text();
  notification.replaces = *arguments.natural();
  notification.icon = *arguments.text();
  notification.summary = *arguments.text();
  notification.body = *arguments.text();
  notification.actions = arguments.texts();
  notification.hints = textsOf(arguments.inside());
  arguments.skip();
  notification.expiresAfter = *arguments.integer();
  return notification;
}

template <typename State>
std::vector<BusMethod> methodsOf(State& state) {
  return {{.name = desktop_notifications_interface::getCapabilities,
           .takes = {},
           .gives = {{"capabilities", "as"}},
           .perform =
               [&state](BusReader, BusAnswer answer) {
                 answer.give([&state](BusWriter& reply) { reply.texts(state.capabilities); });
               }},
          {.name = desktop_notifications_interface::notify,
           .takes = {{"app_name", "s"},
                     {"replaces_id", "u"},
                     {"app_icon", "s"},
                     {"summary", "s"},
                     {"body", "s"},
                     {"actions", "as"},
                     {"hints", "a{sv}"},
                     {"expire_timeout", "i"}},
           .gives = {{"id", "u"}},
           .perform = [&state](BusReader arguments, BusAnswer answer) {
             const std::uint32_t id = state.add(readNotification(arguments));
             answer.give([id](BusWriter& reply) { reply.natural(id); });
           }}};
}

BusMessage signalOf(const char* member, const BusWriter::Write& write) {
  BusMessage signal =
      ownedMessage(dbus_message_new_signal(desktop.path, desktop.interface, member));
  BusWriter arguments(signal.get());
  write(arguments);
  return signal;
}

}  // namespace

NotificationDisplay::NotificationDisplay(const std::string& address,
                                         std::vector<std::string> capabilities)
    : state_(std::make_unique<State>()),
      bus_(std::make_unique<BusThread>(BusThread::Settings{.address = address})) {
  state_->capabilities = std::move(capabilities);
  bus_->performAndWait(
      [this](DBusConnection* bus) {
        serveObject(bus, desktop, methodsOf(*state_));
        takeBusName(bus, desktop.service);
      },
      std::chrono::seconds(10));
}

NotificationDisplay::~NotificationDisplay() { bus_->finish(std::chrono::seconds(10)); }

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
  bus_->send(signalOf(desktop_notifications_interface::actionInvoked, [id](BusWriter& arguments) {
    arguments.natural(id);
    arguments.text(desktop_notifications_interface::defaultAction);
  }));
  bus_->send(
      signalOf(desktop_notifications_interface::notificationClosed, [id](BusWriter& arguments) {
        arguments.natural(id);
        arguments.natural(desktop_notifications_interface::closedByPerson);
      }));
}

}  // namespace kivo
