// What comes on a connection of sdbus-c++, for a loop to serve. Connects nothing.
#pragma once

#include <memory>

#include "platform/linux/process/bus_loop.h"

namespace sdbus {
class IConnection;
}

namespace kivo::linux_platform {

/// `connection` outlives it.
std::unique_ptr<BusEvents> eventsOf(sdbus::IConnection& connection);

}  // namespace kivo::linux_platform
