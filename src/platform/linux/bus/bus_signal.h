// Signals of other programs on the bus. Included by the .cpp files that speak on the bus, nowhere
// else.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/linux/bus/bus_message.h"

namespace kivo::linux_platform {

/// The signals to hear; null for any sender, path or argument.
struct BusSignal {
  const char* interface;
  const char* member;
  /// A bus name of the sender.
  const char* service = nullptr;
  const char* path = nullptr;
  /// The first argument, a text.
  const char* argument = nullptr;
};

/// A signal that was sent. Its texts live as long as the call that hands it over.
struct HeardSignal {
  /// The sender's unique name.
  std::string_view sender;
  std::string_view path;
  BusReader arguments;
};

using OnSignal = std::function<void(HeardSignal)>;

/// Calls `onSignal` for each such signal, on the thread that serves `bus`, until that connection
/// ends. Blocks until the bus has answered. Any program can send such a signal to this one alone,
/// and neither the bus nor libdbus checks its sender then: `onSignal` compares it. Throws
/// std::runtime_error with one line when the bus refuses.
void subscribe(DBusConnection* bus, const BusSignal& signal, OnSignal onSignal);

/// Calls `onChange` when the owner of the bus name `service` changes, with the unique name of the
/// new one, empty for no owner. Ignores all senders but the bus itself. Otherwise as `subscribe`.
void subscribeToOwner(DBusConnection* bus, const char* service,
                      std::function<void(const std::string& owner)> onChange);

}  // namespace kivo::linux_platform
