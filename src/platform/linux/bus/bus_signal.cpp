#include "platform/linux/bus/bus_signal.h"

#include <memory>
#include <new>
#include <utility>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {
namespace {

std::string matchRule(const BusSignal& signal) {
  std::string rule = "type='signal'";
  const auto add = [&rule](const char* key, const char* value) {
    if (value != nullptr) rule += std::string(",") + key + "='" + value + "'";
  };
  add("sender", signal.service);
  add("path", signal.path);
  add("interface", signal.interface);
  add("member", signal.member);
  add("arg0", signal.argument);
  return rule;
}

struct Subscription {
  BusSignal signal;
  OnSignal onSignal;

  [[nodiscard]] bool isMeantBy(DBusMessage* message) const {
    if (!dbus_message_is_signal(message, signal.interface, signal.member)) return false;
    if (signal.path != nullptr && !dbus_message_has_path(message, signal.path)) return false;
    return signal.argument == nullptr || BusReader(message).text() == signal.argument;
  }
};

std::string_view textOrEmpty(const char* text) { return text == nullptr ? "" : text; }

// Callback of libdbus. Leaves the message to other subscriptions too.
DBusHandlerResult filter(DBusConnection*, DBusMessage* message, void* data) {
  const auto& subscription = *static_cast<Subscription*>(data);
  if (subscription.isMeantBy(message)) {
    subscription.onSignal({.sender = textOrEmpty(dbus_message_get_sender(message)),
                           .path = textOrEmpty(dbus_message_get_path(message)),
                           .arguments = BusReader(message)});
  }
  return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}
void endSubscription(void* data) { delete static_cast<Subscription*>(data); }

}  // namespace

void subscribe(DBusConnection* bus, const BusSignal& signal, OnSignal onSignal) {
  auto subscription = std::make_unique<Subscription>(Subscription{signal, std::move(onSignal)});
  if (!dbus_connection_add_filter(bus, filter, subscription.get(), endSubscription)) {
    throw std::bad_alloc();
  }
  static_cast<void>(subscription.release());  // the connection deletes it
  DBusError error = DBUS_ERROR_INIT;          // makes libdbus wait for the bus's answer
  dbus_bus_add_match(bus, matchRule(signal).c_str(), &error);
  const bool refused = dbus_error_is_set(&error) != 0;
  dbus_error_free(&error);
  if (refused) throw Failure("the bus refuses to deliver signals");
}

void subscribeToOwner(DBusConnection* bus, const char* service,
                      std::function<void(const std::string&)> onChange) {
  subscribe(bus,
            {.interface = messageBus.interface,
             .member = "NameOwnerChanged",
             .service = messageBus.service,
             .argument = service},
            [onChange = std::move(onChange)](HeardSignal change) {
              if (change.sender != messageBus.service) return;
              change.arguments.skip();  // the name
              change.arguments.skip();  // its owner before
              if (const auto owner = change.arguments.text()) onChange(std::string(*owner));
            });
}

}  // namespace kivo::linux_platform
