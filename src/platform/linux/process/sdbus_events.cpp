#include "platform/linux/process/sdbus_events.h"

#include <sdbus-c++/sdbus-c++.h>

namespace kivo::linux_platform {
namespace {

class EventsOfConnection : public BusEvents {
 public:
  explicit EventsOfConnection(sdbus::IConnection& connection) : connection_(connection) {}

  Handled handleOne() override {
    try {
      return connection_.processPendingRequest() ? Handled::something : Handled::nothing;
    } catch (const sdbus::Error&) {
      return Handled::busGone;
    }
  }

  Wait wait() override {
    const auto polled = connection_.getEventLoopPollData();
    return {.descriptor = polled.fd,
            .events = polled.events,
            .limitInMilliseconds = polled.getPollTimeout()};
  }

 private:
  sdbus::IConnection& connection_;
};

}  // namespace

std::unique_ptr<BusEvents> eventsOf(sdbus::IConnection& connection) {
  return std::make_unique<EventsOfConnection>(connection);
}

}  // namespace kivo::linux_platform
