// This process's way to the session bus, and how long a run waits for all that is on it. Knows no
// service.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>

namespace kivo::linux_platform {

class BusThread;

/// The time that may be spent on waiting. Usable from any thread.
class WaitingBudget {
 public:
  explicit WaitingBudget(std::chrono::nanoseconds whole) : left_(whole.count()) {}

  /// Zero or more.
  [[nodiscard]] std::chrono::nanoseconds left() const;
  void spend(std::chrono::nanoseconds waited) { left_ -= waited.count(); }

 private:
  std::atomic<std::chrono::nanoseconds::rep> left_;
};

/// The connection of this process. Usable from any thread; outlives every task that uses it.
class SessionBus {
 public:
  /// Begins to connect, on a thread of its own, and returns at once. Without a bus everything asked
  /// of it goes unanswered. A run waits `patience` at most for all of the bus together; a process
  /// performs one run.
  explicit SessionBus(std::chrono::nanoseconds patience = std::chrono::seconds(1));
  /// As `finish`.
  ~SessionBus();

  /// Sends what has still to be sent, waiting for that within the patience that is left, and ends
  /// the connection. A connection that is still being made holds nobody up.
  void finish();

  /// For those that speak on the bus.
  [[nodiscard]] BusThread& thread() { return *thread_; }
  [[nodiscard]] WaitingBudget& budget() { return budget_; }

 private:
  WaitingBudget budget_;
  std::unique_ptr<BusThread> thread_;
};

}  // namespace kivo::linux_platform
