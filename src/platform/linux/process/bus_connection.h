// A connection to the session bus, as the bus library has it. Knows no service; included by the
// .cpp files that speak on the bus, nowhere else.
#pragma once

#include <memory>

#include "platform/linux/process/bus_loop.h"

struct DBusConnection;

namespace kivo::linux_platform {

struct CloseBus {
  void operator()(DBusConnection* bus) const;
};
/// Sends at its end what has still to be sent. For one thread at a time.
using BusConnection = std::unique_ptr<DBusConnection, CloseBus>;

/// Connects to the session bus and returns once the connection stands; null when there is no bus. A
/// socket that says nothing holds it for 25 s. Never starts a bus.
BusConnection connectToSessionBus();

/// Whether something waits to be sent.
bool hasUnsent(DBusConnection* bus);

/// What comes on `bus`, for a loop to serve; `bus` outlives it. One at a time for a connection.
std::unique_ptr<BusEvents> eventsOf(DBusConnection* bus);

}  // namespace kivo::linux_platform
