// A bus connection with the one thread that makes, serves and ends it. Included by the .cpp files
// that speak on the bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_connection.h"

namespace kivo::linux_platform {

/// Connecting begins with the object, on its thread: a socket whose owner is silent would block the
/// caller for 25 s.
class BusThread {
 public:
  /// Is handed the connection, or null when there is no bus (any more).
  using Step = std::function<void(DBusConnection*)>;

  struct Settings {
    /// The bus to connect to; none for the session bus.
    std::optional<std::string> address = std::nullopt;
    /// Called on the thread before it connects.
    std::function<void()> beforehand = nullptr;
    /// Called on the thread once there is no bus, but not after `finish`.
    std::function<void()> onGone = nullptr;
  };

  /// Starts the thread. Where the system has no thread left there is no bus, and none of the
  /// functions in `settings` is called.
  explicit BusThread(Settings settings);
  /// As `finish` without waiting for steps.
  ~BusThread();
  BusThread(const BusThread&) = delete;
  BusThread& operator=(const BusThread&) = delete;

  /// Calls `step`, which must not throw, exactly once: on the thread as soon as it is connected, in
  /// the order of the calls, or with null, possibly at once on the calling thread. Thread-safe.
  void post(Step step);

  /// Performs `step` on the thread, as soon as it is connected, and blocks until its end. Throws
  /// what `step` throws, and std::runtime_error with one line when there is no bus or the step is
  /// not done within `timeout`; `step` may still be performed then.
  void performAndWait(Step step, std::chrono::milliseconds timeout);

  /// Sends `message`, which needs no reply, or drops it when there is no bus. Thread-safe.
  void send(const BusMessage& message);

  /// As `sendCall`. Calls `onReply` on the thread, or, when there is no bus, with null and possibly
  /// at once on the calling thread. Thread-safe.
  void call(const BusMessage& message, std::chrono::milliseconds timeout,
            std::function<void(const BusMessage& reply)> onReply);

  /// Ends the connection after the steps posted so far. Waits for it at most `limit`, and not at
  /// all while it is still connecting and no step was posted. A thread that still connects by then
  /// is detached, and its steps are called with null, as are further ones.
  void finish(std::chrono::nanoseconds limit);

 private:
  struct State;
  static void serve(State& state);
  static void serveConnection(State& state, DBusConnection* bus);

  std::shared_ptr<State> state_;
};

}  // namespace kivo::linux_platform
