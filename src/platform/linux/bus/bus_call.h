// Calls of another program's methods over the bus. Included by the .cpp files that speak on the
// bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_message.h"

namespace kivo::linux_platform {

/// Is handed the reply, which may be an error; null when none will come, since the connection was
/// lost or ends. Must not throw.
using OnReply = std::function<void(const BusMessage& reply)>;

/// The timeout that is usual on D-Bus.
inline constexpr std::chrono::milliseconds usualCallTimeout = std::chrono::seconds(25);
/// Of a call whose reply may come at any time.
inline constexpr std::chrono::milliseconds noTimeout = std::chrono::milliseconds::max();

/// Sends `call` and returns at once. Calls `onReply` exactly once, on the thread that serves `bus`,
/// with an error reply when none has come within `timeout`; at once when the connection was lost
/// before.
void sendCall(DBusConnection* bus, const BusMessage& call, std::chrono::milliseconds timeout,
              OnReply onReply);

/// Sends `call` and blocks until its reply, an error reply after `timeout`; null when there is no
/// connection any more. Other messages that come meanwhile are left to the loop.
BusMessage callAndWait(DBusConnection* bus, const BusMessage& call,
                       std::chrono::milliseconds timeout);

/// The name of the error that `reply`, which is not null, is; none when it is not an error.
std::optional<std::string> errorOf(const BusMessage& reply);

}  // namespace kivo::linux_platform
