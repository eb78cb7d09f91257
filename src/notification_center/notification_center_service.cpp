#include "notification_center/notification_center_service.h"

#include <cstdint>
#include <utility>

#include "notification_center/request_reader.h"
#include "platform/linux/bus/bus_connection.h"
#include "platform/linux/bus/bus_loop.h"
#include "platform/linux/bus/notification_center_interface.h"
#include "platform/linux/bus/served_object.h"
#include "platform/linux/foundation/failure.h"

namespace kivo {

namespace notification_center_interface = linux_platform::notification_center_interface;
using linux_platform::BusAnswer;
using linux_platform::BusConnection;
using linux_platform::BusLoop;
using linux_platform::BusMethod;
using linux_platform::BusReader;
using linux_platform::BusRefusal;
using linux_platform::BusWriter;
using linux_platform::connectToSessionBus;
using linux_platform::serveObject;
using linux_platform::takeBusName;

namespace {

void add(NotificationCenter& center, BusReader arguments, BusAnswer& answer) {
  ReceivedRequest received = readRequest(arguments);
  switch (center.add(received.bundle, std::move(received.request))) {
    case AddOutcome::kept:
      return answer.give();
    case AddOutcome::denied:
      throw BusRefusal(DBUS_ERROR_ACCESS_DENIED,
                       "the user has denied notifications of this bundle");
    case AddOutcome::noRoom:
      throw BusRefusal(DBUS_ERROR_LIMITS_EXCEEDED,
                       "all waiting requests together would exceed 32 MiB");
    case AddOutcome::notKept:
      throw BusRefusal(DBUS_ERROR_IO_ERROR, "the request cannot be written to disk");
  }
}

void setStatus(NotificationCenter& center, BusReader arguments, BusAnswer& answer) {
  const std::string_view bundle = *arguments.text();
  const auto status = notification_center_interface::statusOf(*arguments.integer());
  if (!status)
    throw BusRefusal(DBUS_ERROR_INVALID_ARGS, "invalid status; it must be a number from 0 to 4");
  switch (center.setAuthorizationStatus(std::string(bundle), *status)) {
    case PermissionOutcome::kept:
      return answer.give();
    case PermissionOutcome::longName:
      throw BusRefusal(DBUS_ERROR_LIMITS_EXCEEDED,
                       "the name of the bundle is longer than 255 bytes");
    case PermissionOutcome::noRoom:
      throw BusRefusal(DBUS_ERROR_LIMITS_EXCEEDED,
                       "the permissions of 500 bundles are stored already");
    case PermissionOutcome::notKept:
      throw BusRefusal(DBUS_ERROR_IO_ERROR, "the status cannot be written to disk");
  }
}

std::vector<BusMethod> methodsOf(NotificationCenter& center) {
  return {{.name = notification_center_interface::authorizationStatus,
           .takes = {{"bundle", "s"}},
           .gives = {{"status", "i"}},
           .perform =
               [&center](BusReader arguments, BusAnswer answer) {
                 const auto status = center.authorizationStatus(std::string(*arguments.text()));
                 answer.give([status](BusWriter& reply) {
                   reply.integer(static_cast<std::int32_t>(status));
                 });
               }},
          {.name = notification_center_interface::setAuthorizationStatus,
           .takes = {{"bundle", "s"}, {"status", "i"}},
           .gives = {},
           .perform = [&center](BusReader arguments,
                                BusAnswer answer) { setStatus(center, arguments, answer); }},
          {.name = notification_center_interface::add,
           .takes = {{"bundle", "s"},
                     {"identifier", "s"},
                     {"content", "a{sv}"},
                     {"interval", "d"},
                     {"repeats", "b"}},
           .gives = {},
           .perform = [&center](BusReader arguments,
                                BusAnswer answer) { add(center, arguments, answer); }},
          {.name = notification_center_interface::pending,
           .takes = {{"bundle", "s"}},
           .gives = {{"identifiers", "as"}},
           .perform = [&center](BusReader arguments, BusAnswer answer) {
             const auto identifiers = center.pending(std::string(*arguments.text()));
             answer.give([&identifiers](BusWriter& reply) { reply.texts(identifiers); });
           }}};
}

BusConnection connectionWithName() {
  BusConnection bus = connectToSessionBus();
  if (!bus) throw linux_platform::Failure("there is no session bus");
  takeBusName(bus.get(), notification_center_interface::object.service);
  return bus;
}

}  // namespace

struct NotificationCenterService::Bus {
  BusConnection connection = connectionWithName();
  BusLoop loop{connection.get()};
  std::unique_ptr<DesktopNotifications> desktop;
};

NotificationCenterService::NotificationCenterService() : bus_(std::make_unique<Bus>()) {}

NotificationCenterService::~NotificationCenterService() = default;

void NotificationCenterService::show(const platform::UNMutableNotificationContent& content,
                                     std::function<void(ShowOutcome)> done) {
  bus_->desktop->show(content, std::move(done));
}

void NotificationCenterService::serve(NotificationCenter& center) {
  DBusConnection* const bus = bus_->connection.get();
  try {
    bus_->desktop =
        std::make_unique<DesktopNotifications>(bus, [&center] { center.serverAppeared(); });
    serveObject(bus, notification_center_interface::object, methodsOf(center));
    bus_->loop.run([&center] { return center.showDue(); });
  } catch (const linux_platform::Failure&) {
    // The bus connection was lost before the objects were registered.
  }
}

void NotificationCenterService::stop() noexcept { bus_->loop.stop(); }

}  // namespace kivo
