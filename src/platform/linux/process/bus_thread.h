// A bus connection with the one thread that makes, serves and ends it. Knows no service; included
// by the .cpp files that speak on the bus, nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/linux/process/bus_connection.h"
#include "platform/linux/process/bus_names.h"

namespace kivo::linux_platform {

/// Connecting begins with the object and is waited for by nobody: a socket that says nothing would
/// hold its caller for 25 s.
class BusThread {
 public:
  /// Is handed the connection, or null when there is no bus (any more). Must not throw.
  using Step = std::function<void(DBusConnection*)>;

  /// Starts the thread, which calls `beforehand`, if any, and connects to the session bus.
  /// `onGone`, if any, is called on it once there is no bus, but not after `finish`. Where no
  /// thread can be started there is no bus, and neither is called.
  explicit BusThread(std::function<void()> onGone = nullptr,
                     std::function<void()> beforehand = nullptr);
  /// As `finish` without waiting for steps.
  ~BusThread();
  BusThread(const BusThread&) = delete;
  BusThread& operator=(const BusThread&) = delete;

  /// Has `step` called exactly once: on the bus's thread as soon as the connection stands, in the
  /// order of the calls, or with null, possibly at once on the calling thread. From any thread.
  void post(Step step);

  /// Waits, `limit` at most, until what the steps posted so far had to send has gone out or never
  /// will.
  void flush(std::chrono::nanoseconds limit);

  /// Ends the connection after the steps posted so far. Waits for it at most `limit`, and not at
  /// all when it is still being made and no step was posted; a thread that still connects by then
  /// is left to itself, and its steps are called with null. Further steps are called with null.
  void finish(std::chrono::nanoseconds limit);

 private:
  struct State;
  static void serve(State& state);
  static void serveConnection(State& state, DBusConnection* bus);

  std::shared_ptr<State> state_;
};

}  // namespace kivo::linux_platform
