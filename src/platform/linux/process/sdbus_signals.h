// Signals of other programs on a connection of sdbus-c++.
#pragma once

#include <functional>
#include <string>

namespace sdbus {
class IConnection;
class Message;
}  // namespace sdbus

namespace kivo::linux_platform {

struct BusSignal {
  /// The well-known name of the sender.
  const char* service;
  const char* interface;
  const char* member;
  /// Its first argument, a text; null for any.
  const char* argument = nullptr;
};

/// Has `hear` called for each `signal`, on the thread that serves `connection` and for as long as
/// that lives. Any program can send a signal of this form to this one alone, and neither the bus
/// nor the bus library compares its sender then: `hear` must compare the unique name of the sender.
/// A signal is ignored when `hear` throws sdbus::Error because its arguments are of other types.
/// Throws sdbus::Error when the bus does not take the subscription.
void onSignal(sdbus::IConnection& connection, const BusSignal& signal,
              std::function<void(sdbus::Message&)> hear);

/// Has `hear` called when the owner of `service` changes, with the unique name of the new one,
/// empty for none. Believes the bus alone. Otherwise as `onSignal`.
void onOwnerChange(sdbus::IConnection& connection, const char* service,
                   std::function<void(const std::string& owner)> hear);

}  // namespace kivo::linux_platform
