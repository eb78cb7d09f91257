// Calls one method of another program over the bus. Knows none of them; included by the .cpp files
// that speak on the bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/process/bus_message.h"
#include "platform/linux/process/bus_names.h"

namespace kivo::linux_platform {

class BusThread;

struct BusCall {
  BusObject object;
  const char* method;
  /// Writes the arguments.
  BusWriter::Write write;
  /// How long the reply may take; zero for the 25 s that are usual on the bus.
  std::chrono::milliseconds patience{0};
};

/// Is handed null when no reply will come. Must not throw.
using ReadReply = std::function<void(DBusMessage*)>;

/// Returns at once and has `read` called exactly once: on the bus's thread, or, when there is no
/// bus, possibly at once on the calling thread.
void callOnBus(BusThread& bus, BusCall call, ReadReply read);

/// The name of the error by which `reply`, not null, says that the call has failed; none when it
/// has not.
std::optional<std::string> failureOf(DBusMessage* reply);

}  // namespace kivo::linux_platform
