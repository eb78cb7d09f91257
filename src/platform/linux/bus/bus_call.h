// Calls of another program's methods over the bus. Included by the .cpp files that speak on the
// bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_message.h"

namespace kivo::linux_platform {

/// Called with the reply, which may be an error, or with null when the connection is lost or closed
/// before the reply comes. Must not throw.
using OnReply = std::function<void(const BusMessage& reply)>;

/// The default timeout of D-Bus calls.
inline constexpr std::chrono::milliseconds usualCallTimeout = std::chrono::seconds(25);
/// For calls that wait for their reply without a limit.
inline constexpr std::chrono::milliseconds noTimeout = std::chrono::milliseconds::max();

/// Sends `call` and returns at once. Calls `onReply` exactly once, on the thread that serves `bus`.
/// After `timeout` the reply is an error. When the connection is lost already, calls `onReply` with
/// null before it returns.
void sendCall(DBusConnection* bus, const BusMessage& call, std::chrono::milliseconds timeout,
              OnReply onReply);

/// Sends `call` and blocks until its reply. Returns an error reply after `timeout`, and null when
/// the connection is lost. Other messages that arrive meanwhile stay queued for the event loop.
BusMessage callAndWait(DBusConnection* bus, const BusMessage& call,
                       std::chrono::milliseconds timeout);

/// Returns the error name of `reply`; nullopt when it is not an error. `reply` must not be null.
std::optional<std::string> errorOf(const BusMessage& reply);

}  // namespace kivo::linux_platform
