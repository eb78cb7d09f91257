#include "platform/linux/process/bus_connection.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include <dbus/dbus.h>
#include <poll.h>

#include "platform/linux/process/bus_message.h"

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
  explicit Deadlines(DBusConnection* bus) : bus_(bus) {
    if (!dbus_connection_set_timeout_functions(bus, begin, end, beginAnew, &due_, nullptr)) {
      throw std::bad_alloc();
    }
  }
  ~Deadlines() {
    dbus_connection_set_timeout_functions(bus_, nullptr, nullptr, nullptr, nullptr, nullptr);
  }
  Deadlines(const Deadlines&) = delete;
  Deadlines& operator=(const Deadlines&) = delete;

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

  DBusConnection* bus_;
  Due due_;
};

// What the bus library waits for at its socket: also to write, while the bus lets us in.
class Watches {
 public:
  explicit Watches(DBusConnection* bus) : bus_(bus) {
    if (!dbus_connection_set_watch_functions(bus, begin, end, nullptr, &all_, nullptr)) {
      throw std::bad_alloc();
    }
  }
  ~Watches() {
    dbus_connection_set_watch_functions(bus_, nullptr, nullptr, nullptr, nullptr, nullptr);
  }
  Watches(const Watches&) = delete;
  Watches& operator=(const Watches&) = delete;

  // For poll.
  [[nodiscard]] short events() const {
    unsigned wanted = 0;
    for (DBusWatch* const watch : all_) {
      if (dbus_watch_get_enabled(watch)) wanted |= dbus_watch_get_flags(watch);
    }
    return static_cast<short>((wanted & DBUS_WATCH_READABLE ? POLLIN : 0) |
                              (wanted & DBUS_WATCH_WRITABLE ? POLLOUT : 0));
  }

 private:
  using All = std::set<DBusWatch*>;

  // As the bus library calls who waits for it.
  static dbus_bool_t begin(DBusWatch* watch, void* all) {
    static_cast<All*>(all)->insert(watch);
    return 1;
  }
  static void end(DBusWatch* watch, void* all) { static_cast<All*>(all)->erase(watch); }

  DBusConnection* bus_;
  All all_;
};

class EventsOfConnection : public BusEvents {
 public:
  explicit EventsOfConnection(DBusConnection* bus) : bus_(bus), deadlines_(bus), watches_(bus) {}

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
        .events = watches_.events(),
        .limitInMilliseconds = !standing || hasMessages() ? 0 : deadlines_.millisecondsToFirst()};
  }

 private:
  [[nodiscard]] bool hasMessages() {
    return dbus_connection_get_dispatch_status(bus_) != DBUS_DISPATCH_COMPLETE;
  }

  DBusConnection* bus_;
  Deadlines deadlines_;
  Watches watches_;
  bool waited_ = false;
};

BusConnection connectedSocket() {
  const auto address = sessionBusAddress();
  if (!address) return nullptr;
  BusConnection bus(dbus_connection_open_private(address->c_str(), nullptr));
  if (bus) dbus_connection_set_exit_on_disconnect(bus.get(), 0);
  return bus;
}

}  // namespace

// Before it stands, nothing was sent that could still go out, and waiting for that never ends.
void CloseBus::operator()(DBusConnection* bus) const {
  if (dbus_connection_get_is_authenticated(bus)) dbus_connection_flush(bus);
  dbus_connection_close(bus);
  dbus_connection_unref(bus);
}

BusConnection connectToSessionBus() {
  BusConnection bus = connectedSocket();
  return bus && dbus_bus_register(bus.get(), nullptr) ? std::move(bus) : nullptr;
}

BusConnection openSessionBus() {
  BusConnection bus = connectedSocket();
  if (!bus) return nullptr;
  // Nobody waits for the answer: it is a name of ours, or the bus ends the connection.
  const BusMessage hello(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                      DBUS_INTERFACE_DBUS, "Hello"));
  const bool asked = hello && dbus_connection_send(bus.get(), hello.get(), nullptr);
  return asked ? std::move(bus) : nullptr;
}

bool hasUnsent(DBusConnection* bus) {
  return dbus_connection_get_is_connected(bus) && dbus_connection_has_messages_to_send(bus);
}

void dropUnsent(DBusConnection* bus) { dbus_connection_close(bus); }

std::unique_ptr<BusEvents> eventsOf(DBusConnection* bus) {
  return std::make_unique<EventsOfConnection>(bus);
}

}  // namespace kivo::linux_platform
