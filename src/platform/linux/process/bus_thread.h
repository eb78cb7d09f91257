// A bus connection with the one thread that makes, serves and ends it: one of its own, or one that
// has nothing else to do. Knows no service; included by the .cpp files that speak on the bus,
// nowhere else.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/linux/process/bus_connection.h"
#include "platform/linux/process/bus_names.h"

namespace kivo::linux_platform {

/// Nobody but the thread waits for connecting: a socket that says nothing would hold its caller for
/// 25 s.
class BusThread {
 public:
  /// Is handed the connection, or null when there is no bus (any more). Must not throw.
  using Step = std::function<void(DBusConnection*)>;

  /// Starts the thread, which connects to the session bus. `onGone`, if any, is called on it once
  /// there is no bus, but not after `finish`.
  explicit BusThread(std::function<void()> onGone = nullptr);
  /// As `finish` without waiting for steps.
  ~BusThread();

  /// Starts none: the connection is made and served by the thread that calls `serve`. Steps are
  /// handed it while the bus has still to let us in; what they send goes out once it has.
  struct Lent {};
  explicit BusThread(Lent);
  /// Connects, and serves the connection until `finish` has been called and what was sent has gone
  /// out, but no longer than `finish` was given. Once, on a thread that gets SIGALRM; takes over
  /// the process's real-time timer for it, and SIGALRM does not end the process from then on.
  void serve();

  BusThread(const BusThread&) = delete;
  BusThread& operator=(const BusThread&) = delete;

  /// Has `step` called exactly once: on the bus's thread as soon as the connection stands, in the
  /// order of the calls, or with null, possibly at once on the calling thread. From any thread.
  void post(Step step);

  /// Ends the connection after the steps posted so far. Waits for it at most `limit`, and not at
  /// all when it is still being made and no step was posted; a thread that still connects by then
  /// is left to itself, and its steps are called with null. Further steps are called with null. A
  /// lent thread is not waited for.
  void finish(std::chrono::nanoseconds limit);

 private:
  struct State;
  static void serve(State& state, const BusConnection& bus);
  static void serveConnection(State& state, DBusConnection* bus);

  std::shared_ptr<State> state_;
};

}  // namespace kivo::linux_platform
