#include "platform/linux/process/bus_connection.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>

#include <systemd/sd-bus.h>

namespace kivo::linux_platform {
namespace {

// From a moment of the monotonic clock in microseconds, the latest one meaning never.
int millisecondsUntil(std::uint64_t moment) {
  if (moment == std::numeric_limits<std::uint64_t>::max()) return -1;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(
      std::chrono::microseconds(moment) - std::chrono::floor<std::chrono::microseconds>(now));
  return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
}

class EventsOfConnection : public BusEvents {
 public:
  explicit EventsOfConnection(sd_bus* bus) : bus_(bus) {}

  Handled handleOne() override {
    const int code = sd_bus_process(bus_, nullptr);
    if (code < 0) return Handled::busGone;
    return code > 0 ? Handled::something : Handled::nothing;
  }

  Wait wait() override {
    std::uint64_t until = std::numeric_limits<std::uint64_t>::max();
    sd_bus_get_timeout(bus_, &until);
    return {.descriptor = sd_bus_get_fd(bus_),
            .events = static_cast<short>(sd_bus_get_events(bus_)),
            .limitInMilliseconds = millisecondsUntil(until)};
  }

 private:
  sd_bus* bus_;
};

}  // namespace

void CloseBus::operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }

BusConnection connectToSessionBus() {
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) return nullptr;
  BusConnection bus(opened);
  // It stands when what was sent first has gone out.
  return sd_bus_flush(opened) < 0 ? nullptr : std::move(bus);
}

std::unique_ptr<BusEvents> eventsOf(sd_bus* bus) {
  return std::make_unique<EventsOfConnection>(bus);
}

}  // namespace kivo::linux_platform
