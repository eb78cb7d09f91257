// Connections to a message bus, by libdbus. Included by the .cpp files that speak on the bus,
// nowhere else.
#pragma once

#include <memory>
#include <optional>
#include <string>

struct DBusConnection;
struct DBusMessage;

namespace kivo::linux_platform {

/// A message, reference-counted by libdbus. Must not be changed after it was sent.
using BusMessage = std::shared_ptr<DBusMessage>;

struct CloseBus {
  void operator()(DBusConnection* bus) const;
};
/// The destructor sends the unsent messages first. Not thread-safe.
using BusConnection = std::unique_ptr<DBusConnection, CloseBus>;

/// Returns the address of a bus that listens on the socket at `path`. Throws std::bad_alloc.
std::string busAddressOf(const std::string& path);

/// Returns the address of the session bus; nullopt when there is none. Starts no bus.
std::optional<std::string> sessionBusAddress();

/// Connects, and blocks until the bus has accepted the connection: for up to 25 s when the owner of
/// the socket does not answer. Returns null when there is no bus. Starts no bus.
BusConnection connectToBus(const std::string& address);
BusConnection connectToSessionBus();
BusConnection connectToSystemBus();

/// Requests the bus name `name` and blocks until the bus has answered. Throws Failure when another
/// program owns it or the connection is lost.
void takeBusName(DBusConnection* bus, const std::string& name);

}  // namespace kivo::linux_platform
