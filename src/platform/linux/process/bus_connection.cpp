#include "platform/linux/process/bus_connection.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include <dbus/dbus.h>
#include <poll.h>

namespace kivo::linux_platform {
namespace {

using Clock = std::chrono::steady_clock;

// Where the session bus is, as its clients agree on it. The bus library would start one of its own
// where it finds none, and a run is not to.
std::optional<std::string> sessionBusAddress() {
  if (const char* const given = std::getenv("DBUS_SESSION_BUS_ADDRESS")) {
    const std::string address = given;
    return address.find("autolaunch:") == std::string::npos ? std::optional(address) : std::nullopt;
  }
  const char* const folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder == nullptr) return std::nullopt;
  const std::unique_ptr<char, decltype(&dbus_free)> escaped(dbus_address_escape_value(folder),
                                                            dbus_free);
  if (!escaped) return std::nullopt;
  return std::string("unix:path=") + escaped.get() + "/bus";
}

// The moments by which calls must have been answered, as the bus library hands them out.
class Deadlines {
 public:
  Deadlines() = default;
  Deadlines(const Deadlines&) = delete;
  Deadlines& operator=(const Deadlines&) = delete;

  // Whether the library keeps them here from now on.
  bool keepFor(DBusConnection* bus) {
    return dbus_connection_set_timeout_functions(bus, begin, end, beginAnew, &due_, nullptr) != 0;
  }
  static void forget(DBusConnection* bus) {
    dbus_connection_set_timeout_functions(bus, nullptr, nullptr, nullptr, nullptr, nullptr);
  }

  // Whether one had passed.
  bool handlePassed() {
    const auto now = Clock::now();
    for (auto& [timeout, moment] : due_) {
      if (!dbus_timeout_get_enabled(timeout) || moment > now) continue;
      moment = now + intervalOf(timeout);
      dbus_timeout_handle(timeout);  // may change the list
      return true;
    }
    return false;
  }

  // For poll: -1 when there is none.
  [[nodiscard]] int millisecondsToFirst() const {
    auto first = Clock::time_point::max();
    for (const auto& [timeout, moment] : due_) {
      if (dbus_timeout_get_enabled(timeout)) first = std::min(first, moment);
    }
    if (first == Clock::time_point::max()) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(first - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
  }

 private:
  using Due = std::map<DBusTimeout*, Clock::time_point>;

  static std::chrono::milliseconds intervalOf(DBusTimeout* timeout) {
    return std::chrono::milliseconds(dbus_timeout_get_interval(timeout));
  }

  // As the bus library calls who keeps time for it.
  static dbus_bool_t begin(DBusTimeout* timeout, void* due) {
    (*static_cast<Due*>(due))[timeout] = Clock::now() + intervalOf(timeout);
    return 1;
  }
  static void beginAnew(DBusTimeout* timeout, void* due) { begin(timeout, due); }
  static void end(DBusTimeout* timeout, void* due) { static_cast<Due*>(due)->erase(timeout); }

  Due due_;
};

class EventsOfConnection : public BusEvents {
 public:
  explicit EventsOfConnection(DBusConnection* bus) : bus_(bus) {
    if (!deadlines_.keepFor(bus)) throw std::bad_alloc();
  }
  ~EventsOfConnection() override { Deadlines::forget(bus_); }
  EventsOfConnection(const EventsOfConnection&) = delete;
  EventsOfConnection& operator=(const EventsOfConnection&) = delete;

  Handled handleOne() override {
    if (hasMessages()) {
      dbus_connection_dispatch(bus_);
      return Handled::something;
    }
    if (!dbus_connection_get_is_connected(bus_)) return Handled::busGone;
    if (deadlines_.handlePassed()) return Handled::something;
    // The socket is only looked at after a wait: what is left in it ends the next one at once.
    if (!std::exchange(waited_, false)) return Handled::nothing;
    dbus_connection_read_write(bus_, 0);
    return Handled::something;
  }

  // What came while something was sent and waited for lies in the connection already; the socket
  // tells nothing of it.
  Wait wait() override {
    waited_ = true;
    int descriptor = -1;
    const bool standing = dbus_connection_get_unix_fd(bus_, &descriptor) != 0;
    return {
        .descriptor = descriptor,
        .events = static_cast<short>(hasUnsent(bus_) ? POLLIN | POLLOUT : POLLIN),
        .limitInMilliseconds = !standing || hasMessages() ? 0 : deadlines_.millisecondsToFirst()};
  }

 private:
  [[nodiscard]] bool hasMessages() {
    return dbus_connection_get_dispatch_status(bus_) != DBUS_DISPATCH_COMPLETE;
  }

  DBusConnection* bus_;
  Deadlines deadlines_;
  bool waited_ = false;
};

}  // namespace

// Before it stands, nothing was sent that could still go out, and waiting for that never ends.
void CloseBus::operator()(DBusConnection* bus) const {
  if (dbus_connection_get_is_authenticated(bus)) dbus_connection_flush(bus);
  dbus_connection_close(bus);
  dbus_connection_unref(bus);
}

BusConnection connectToSessionBus() {
  const auto address = sessionBusAddress();
  if (!address) return nullptr;
  BusConnection bus(dbus_connection_open_private(address->c_str(), nullptr));
  if (!bus) return nullptr;
  dbus_connection_set_exit_on_disconnect(bus.get(), 0);
  return dbus_bus_register(bus.get(), nullptr) ? std::move(bus) : nullptr;
}

bool hasUnsent(DBusConnection* bus) { return dbus_connection_has_messages_to_send(bus) != 0; }

std::unique_ptr<BusEvents> eventsOf(DBusConnection* bus) {
  return std::make_unique<EventsOfConnection>(bus);
}

}  // namespace kivo::linux_platform
