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

/// As `connectToSessionBus`, but returns while the bus has still to let us in: what is sent goes
/// out once it has, when a loop serves the connection. Blocks only while the queue of a socket is
/// full, until it is not or a signal comes.
BusConnection openSessionBus();

/// Whether something waits to be sent, which it does not without end on a bus that has gone.
bool hasUnsent(DBusConnection* bus);

/// Closes `bus` at once, without what has still to be sent.
void dropUnsent(DBusConnection* bus);

/// What comes on `bus`, for a loop to serve; `bus` outlives it. One at a time for a connection.
std::unique_ptr<BusEvents> eventsOf(DBusConnection* bus);

}  // namespace kivo::linux_platform
