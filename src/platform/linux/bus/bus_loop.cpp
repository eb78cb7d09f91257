#include "platform/linux/bus/bus_loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <map>
#include <new>
#include <system_error>
#include <utility>

#include <dbus/dbus.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The deadlines of pending calls. libdbus leaves them to the event loop of the connection.
class BusLoop::Deadlines {
 public:
  explicit Deadlines(DBusConnection* bus) : bus_(bus) {
    if (!dbus_connection_set_timeout_functions(bus, add, remove, toggle, &due_, nullptr)) {
      throw std::bad_alloc();
    }
  }
  ~Deadlines() {
    dbus_connection_set_timeout_functions(bus_, nullptr, nullptr, nullptr, nullptr, nullptr);
  }
  Deadlines(const Deadlines&) = delete;
  Deadlines& operator=(const Deadlines&) = delete;

  // Handles one deadline that has passed; returns false when none has.
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

  [[nodiscard]] std::optional<milliseconds> untilFirst() const {
    std::optional<Clock::time_point> first;
    for (const auto& [timeout, moment] : due_) {
      if (dbus_timeout_get_enabled(timeout)) first = std::min(first.value_or(moment), moment);
    }
    if (!first) return std::nullopt;
    return std::chrono::ceil<milliseconds>(*first - Clock::now());
  }

 private:
  using Due = std::map<DBusTimeout*, Clock::time_point>;

  static milliseconds intervalOf(DBusTimeout* timeout) {
    return milliseconds(dbus_timeout_get_interval(timeout));
  }

  // Callbacks of libdbus.
  static dbus_bool_t add(DBusTimeout* timeout, void* due) {
    (*static_cast<Due*>(due))[timeout] = Clock::now() + intervalOf(timeout);
    return 1;
  }
  static void toggle(DBusTimeout* timeout, void* due) { add(timeout, due); }
  static void remove(DBusTimeout* timeout, void* due) { static_cast<Due*>(due)->erase(timeout); }

  DBusConnection* bus_;
  Due due_;
};

namespace {

bool hasMessages(DBusConnection* bus) {
  return dbus_connection_get_dispatch_status(bus) != DBUS_DISPATCH_COMPLETE;
}

// Returns the timeout for poll; -1 when there is no limit.
int pollLimit(std::optional<milliseconds> one, std::optional<milliseconds> other) {
  constexpr milliseconds longest = std::chrono::hours(1);
  if (!one && !other) return -1;
  const milliseconds limit = std::min(one.value_or(longest), other.value_or(longest));
  return static_cast<int>(std::clamp(limit, milliseconds(0), longest).count());
}

}  // namespace

BusLoop::BusLoop(DBusConnection* bus)
    : bus_(bus),
      deadlines_(std::make_unique<Deadlines>(bus)),
      wakeDescriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wakeDescriptor_ < 0) throw Failure("eventfd: " + std::generic_category().message(errno));
}

BusLoop::~BusLoop() { close(wakeDescriptor_); }

BusLoop::End BusLoop::run(const BeforeWaiting& beforeWaiting) {
  while (!stopping_) {
    while (handleOne()) continue;
    if (!dbus_connection_get_is_connected(bus_)) return End::busGone;
    const auto limit = beforeWaiting();
    if (!stopping_) wait(limit);
  }
  return End::stopped;
}

// Handles one message or one deadline; returns false when none is pending.
bool BusLoop::handleOne() {
  if (hasMessages(bus_)) {
    dbus_connection_dispatch(bus_);
    return true;
  }
  if (!dbus_connection_get_is_connected(bus_)) return false;
  if (deadlines_->handlePassed()) return true;
  // Reads the socket only after a wait: bytes that are left in it end the next wait at once.
  if (!std::exchange(waited_, false)) return false;
  dbus_connection_read_write(bus_, 0);
  return true;
}

// A blocking call leaves other messages in libdbus's queue, which poll does not see. So the loop
// does not wait while there are any.
void BusLoop::wait(std::optional<milliseconds> limit) {
  waited_ = true;
  int descriptor = -1;
  if (!dbus_connection_get_unix_fd(bus_, &descriptor) || hasMessages(bus_)) limit = milliseconds(0);
  const bool unsent = dbus_connection_has_messages_to_send(bus_) != 0;
  const auto events = static_cast<short>(unsent ? POLLIN | POLLOUT : POLLIN);
  std::array<pollfd, 2> polled{{{descriptor, events, 0}, {wakeDescriptor_, POLLIN, 0}}};
  poll(polled.data(), polled.size(), pollLimit(limit, deadlines_->untilFirst()));
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t drained = read(wakeDescriptor_, &count, sizeof count);
}

void BusLoop::wake() noexcept {
  const int before = errno;  // a signal handler must not change it
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wakeDescriptor_, &one, sizeof one);
  errno = before;
}

void BusLoop::stop() noexcept {
  stopping_ = true;
  wake();
}

}  // namespace kivo::linux_platform
