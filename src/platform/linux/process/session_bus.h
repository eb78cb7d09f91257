// This process's connection to the session bus, and what its runs know of the services there.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/concurrency/task.h"

namespace kivo::linux_platform {

class BusThread;

/// Usable from any thread; outlives every task that uses it.
class SessionBus {
 public:
  static constexpr std::chrono::nanoseconds usualTimeout = std::chrono::seconds(1);

  /// Begins to connect, on a thread of its own, and returns at once. Without a bus everything asked
  /// of it goes unanswered. Each call of a run has `timeout`, which includes the time until the
  /// connection stands. `beforehand`, if any, is called on that thread first.
  explicit SessionBus(std::chrono::nanoseconds timeout = usualTimeout,
                      std::function<void()> beforehand = nullptr);
  /// As `finish`.
  ~SessionBus();

  /// Waits until what has still to be sent has gone out: for the timeout of a call at most, and not
  /// at all when the run that ended last was not answered in time.
  void flush();

  /// As `flush`, and ends the connection. A connection that is still being made holds nobody up.
  void finish();

  /// Performs `run`, which keeps its executor throughout, as one run: once a call of it was not
  /// answered in time, `isMissing` holds until its end. All calls are made within a run.
  platform::Task<void> asOneRun(platform::Task<void> run);

  /// For those that speak on the bus.
  [[nodiscard]] BusThread& thread() { return *thread_; }
  [[nodiscard]] std::chrono::nanoseconds timeout() const { return timeout_; }
  /// Whether a call of the run whose executor is `executor` was not answered in time.
  [[nodiscard]] bool isMissing(const boost::asio::any_io_executor& executor);
  void setMissing(const boost::asio::any_io_executor& executor);

 private:
  struct Runs;

  std::chrono::nanoseconds timeout_;
  std::unique_ptr<Runs> runs_;
  std::unique_ptr<BusThread> thread_;
};

}  // namespace kivo::linux_platform
