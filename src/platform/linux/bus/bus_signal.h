// Signals of other programs on the bus. Included by the .cpp files that speak on the bus, nowhere
// else.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/linux/bus/bus_message.h"

namespace kivo::linux_platform {

/// Which signals to receive. A null service, path or argument matches any.
struct BusSignal {
  const char* interface;
  const char* member;
  /// A bus name of the sender.
  const char* service = nullptr;
  const char* path = nullptr;
  /// The first argument, a text.
  const char* argument = nullptr;
};

/// A received signal. Its texts are valid during the call of `OnSignal`.
struct HeardSignal {
  /// The sender's unique name.
  std::string_view sender;
  std::string_view path;
  BusReader arguments;
};

using OnSignal = std::function<void(HeardSignal)>;

/// Calls `onSignal` for each matching signal, on the thread that serves `bus`, until the connection
/// is closed. Blocks until the bus has answered. A program can also send a signal directly to this
/// one; neither the bus nor libdbus checks the sender then, so `onSignal` has to compare it. Throws
/// Failure when the bus refuses the subscription.
void subscribe(DBusConnection* bus, const BusSignal& signal, OnSignal onSignal);

/// Calls `onChange` when the owner of the bus name `service` changes, with the unique name of the
/// new owner; empty when there is none. Ignores signals that the bus itself did not send. Otherwise
/// as `subscribe`.
void subscribeToOwner(DBusConnection* bus, const char* service,
                      std::function<void(const std::string& owner)> onChange);

}  // namespace kivo::linux_platform
