// This process's connection to the session bus, with timeouts for calls and runs.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/concurrency/task.h"
#include "platform/linux/bus/bus_connection.h"

namespace kivo::linux_platform {

class BusThread;

/// Thread-safe. Must outlive every task that uses it.
class SessionBus {
 public:
  static constexpr std::chrono::nanoseconds usualTimeout = std::chrono::seconds(1);

  /// Begins to connect on a thread of its own and returns at once. `timeout` applies to each call
  /// and includes the time until the bus is connected. `beforehand`, if any, is called on that
  /// thread first.
  explicit SessionBus(std::chrono::nanoseconds timeout = usualTimeout,
                      std::function<void()> beforehand = nullptr);
  /// As `finish`.
  ~SessionBus();

  /// Calls a method and suspends until its reply, which may be an error. Returns null when there is
  /// no bus, after the timeout, and at once when an earlier call of the same run timed out.
  /// Cancelling the task does not end the call.
  platform::Task<BusMessage> call(BusMessage call);

  /// As `call`, for a program without tasks: blocks instead of suspending.
  BusMessage callAndWait(const BusMessage& call);

  /// Sends `signal` as soon as the bus is connected, and returns at once.
  void send(const BusMessage& signal);

  /// Sends the unsent messages and closes the connection. Blocks for the timeout of a call at most,
  /// and for 50 ms at most when a call of the run that ended last timed out. Does not block while
  /// it is still connecting and nothing was sent.
  void finish();

  /// Performs `run` as one run: after one of its calls has timed out, the later ones return null at
  /// once. `run` must stay on its executor.
  platform::Task<void> asOneRun(platform::Task<void> run);

 private:
  struct Runs;

  std::chrono::nanoseconds timeout_;
  std::unique_ptr<Runs> runs_;
  std::unique_ptr<BusThread> thread_;
};

}  // namespace kivo::linux_platform
