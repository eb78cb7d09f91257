#include "platform/linux/process/session_bus.h"

#include <algorithm>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/process/bus_thread.h"

namespace kivo::linux_platform {

std::chrono::nanoseconds WaitingBudget::left() const {
  return std::chrono::nanoseconds(std::max<std::chrono::nanoseconds::rep>(left_, 0));
}

SessionBus::SessionBus(std::chrono::nanoseconds patience)
    : budget_(patience),
      thread_(std::make_unique<BusThread>([] { return sdbus::createSessionBusConnection(); })) {}

SessionBus::~SessionBus() { finish(); }

void SessionBus::finish() { thread_->finish(budget_.left()); }

}  // namespace kivo::linux_platform
