// This process's connection to the session bus, and the timeouts of its runs there.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/concurrency/task.h"
#include "platform/linux/bus/bus_connection.h"

namespace kivo::linux_platform {

class BusThread;

/// Thread-safe; outlives every task that uses it.
class SessionBus {
 public:
  static constexpr std::chrono::nanoseconds usualTimeout = std::chrono::seconds(1);

  /// Begins to connect, on a thread of its own, and returns at once. Without a bus no call is
  /// answered. `timeout` is that of each call; it includes the time until the bus is connected.
  /// `beforehand`, if any, is called on that thread first.
  explicit SessionBus(std::chrono::nanoseconds timeout = usualTimeout,
                      std::function<void()> beforehand = nullptr);
  /// As `finish`.
  ~SessionBus();

  /// Calls a method, and suspends until the reply has come, which may be an error. Null when there
  /// is no bus, when none has come within the timeout, and at once after an earlier call of the
  /// same run had none in time. Cancelling the task does not end the call.
  platform::Task<BusMessage> call(BusMessage call);

  /// As `call`, for a program without tasks: blocks instead of suspending.
  BusMessage callAndWait(const BusMessage& call);

  /// Sends `signal` as soon as the bus is connected, and returns at once.
  void send(const BusMessage& signal);

  /// Sends what is still unsent and ends the connection: waits for the timeout of a call at most,
  /// and not at all when a call of the run that ended last timed out, or while it is still
  /// connecting.
  void finish();

  /// Performs `run`, which keeps its executor throughout, as one run, whose calls end with the
  /// first one that times out.
  platform::Task<void> asOneRun(platform::Task<void> run);

 private:
  struct Runs;

  std::chrono::nanoseconds timeout_;
  std::unique_ptr<Runs> runs_;
  std::unique_ptr<BusThread> thread_;
};

}  // namespace kivo::linux_platform
