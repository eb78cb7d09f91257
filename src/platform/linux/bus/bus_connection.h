// Connections to a message bus, by libdbus. Included by the .cpp files that speak on the bus,
// nowhere else.
#pragma once

#include <memory>
#include <optional>
#include <string>

struct DBusConnection;
struct DBusMessage;

namespace kivo::linux_platform {

/// A message, counted by libdbus. One that was sent is not changed any more.
using BusMessage = std::shared_ptr<DBusMessage>;

struct CloseBus {
  void operator()(DBusConnection* bus) const;
};
/// Sends the messages that are still unsent when it ends. Not thread-safe.
using BusConnection = std::unique_ptr<DBusConnection, CloseBus>;

/// The address of a bus that listens on the socket at `path`. Throws std::bad_alloc.
std::string busAddressOf(const std::string& path);

/// The address of the session bus; none when there is no session bus. A run never starts one.
std::optional<std::string> sessionBusAddress();

/// Connects and returns once the bus has accepted the connection; null when there is no bus.
/// A socket whose owner is silent blocks the caller for 25 s. Never starts a bus.
BusConnection connectToBus(const std::string& address);
BusConnection connectToSessionBus();
BusConnection connectToSystemBus();

/// Owns the bus name `name` from now on. Blocks until the bus has answered. Throws
/// std::runtime_error with one line when another program owns it, or there is no bus any more.
void takeBusName(DBusConnection* bus, const std::string& name);

}  // namespace kivo::linux_platform
