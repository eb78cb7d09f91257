// Calls one method of another program over the bus. Knows none of them; included by the .cpp files
// that speak on the bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>

#include "platform/linux/process/bus_names.h"

struct sd_bus_message;

namespace kivo::linux_platform {

class BusThread;

struct BusCall {
  BusObject object;
  const char* method;
  /// Writes the arguments; a negative code of the bus library when that cannot be done.
  std::function<int(sd_bus_message*)> write;
  /// How long the reply may take; zero for the 25 s that are usual on the bus.
  std::chrono::microseconds patience{0};
};

/// Is handed null when no reply will come. Must not throw.
using ReadReply = std::function<void(sd_bus_message*)>;

/// Returns at once and has `read` called exactly once: on the bus's thread, or, when there is no
/// bus, possibly at once on the calling thread.
void callOnBus(BusThread& bus, BusCall call, ReadReply read);

/// Whether `reply`, not null, says that the call has failed.
bool isError(sd_bus_message* reply);

}  // namespace kivo::linux_platform
