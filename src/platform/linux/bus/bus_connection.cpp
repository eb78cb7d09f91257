#include "platform/linux/bus/bus_connection.h"

#include <cstdlib>
#include <new>

#include <dbus/dbus.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {

// Flushing a connection that the bus has not accepted yet can block for ever.
void CloseBus::operator()(DBusConnection* bus) const {
  if (dbus_connection_get_is_authenticated(bus)) dbus_connection_flush(bus);
  dbus_connection_close(bus);
  dbus_connection_unref(bus);
}

std::string busAddressOf(const std::string& path) {
  const std::unique_ptr<char, decltype(&dbus_free)> escaped(dbus_address_escape_value(path.c_str()),
                                                            dbus_free);
  if (!escaped) throw std::bad_alloc();
  return std::string("unix:path=") + escaped.get();
}

// libdbus itself would start a bus where it finds none.
std::optional<std::string> sessionBusAddress() {
  if (const char* const given = std::getenv("DBUS_SESSION_BUS_ADDRESS")) {
    const std::string address = given;
    return address.find("autolaunch:") == std::string::npos ? std::optional(address) : std::nullopt;
  }
  const char* const folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder == nullptr) return std::nullopt;
  return busAddressOf(std::string(folder) + "/bus");
}

BusConnection connectToBus(const std::string& address) {
  BusConnection bus(dbus_connection_open_private(address.c_str(), nullptr));
  if (!bus) return nullptr;
  dbus_connection_set_exit_on_disconnect(bus.get(), 0);
  return dbus_bus_register(bus.get(), nullptr) ? std::move(bus) : nullptr;
}

BusConnection connectToSessionBus() {
  const auto address = sessionBusAddress();
  return address ? connectToBus(*address) : nullptr;
}

// Not by dbus_bus_get_private, which holds libdbus's lock on all buses while it connects.
BusConnection connectToSystemBus() {
  const char* const given = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
  return connectToBus(given != nullptr ? given : "unix:path=/run/dbus/system_bus_socket");
}

void takeBusName(DBusConnection* bus, const std::string& name) {
  if (dbus_bus_request_name(bus, name.c_str(), DBUS_NAME_FLAG_DO_NOT_QUEUE, nullptr) !=
      DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER) {
    throw Failure("another program is " + name);
  }
}

}  // namespace kivo::linux_platform
