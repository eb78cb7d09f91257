// This process's way to the session bus, and how long a run waits for all that is on it. Knows no
// service.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/concurrency/task.h"

namespace kivo::linux_platform {

class BusThread;

/// The time that a run may spend on waiting.
class WaitingBudget {
 public:
  explicit WaitingBudget(std::chrono::nanoseconds whole) : left_(whole) {}

  /// Zero or more.
  [[nodiscard]] std::chrono::nanoseconds left() const;
  void spend(std::chrono::nanoseconds waited) { left_ -= waited; }

 private:
  std::chrono::nanoseconds left_;
};

/// The connection of this process. Usable from any thread; outlives every task that uses it.
class SessionBus {
 public:
  static constexpr std::chrono::nanoseconds usualPatience = std::chrono::seconds(1);

  /// Begins to connect, on a thread of its own, and returns at once. Without a bus everything asked
  /// of it goes unanswered. A run waits `patience` at most for all of the bus together.
  /// `beforehand`, if any, is called on that thread first.
  explicit SessionBus(std::chrono::nanoseconds patience = usualPatience,
                      std::function<void()> beforehand = nullptr);
  /// As `finish`.
  ~SessionBus();

  /// Waits until what has still to be sent has gone out, within the patience that the run that
  /// ended last has left.
  void flush();

  /// As `flush`, and ends the connection. A connection that is still being made holds nobody up.
  void finish();

  /// Performs `run`, which keeps its executor throughout, as one run: all that it waits for on the
  /// bus comes out of one budget. A task outside of any run has the whole patience for each wait.
  platform::Task<void> asOneRun(platform::Task<void> run);

  /// For those that speak on the bus.
  [[nodiscard]] BusThread& thread() { return *thread_; }
  /// The budget of the run that the calling task belongs to, whose executor is `executor`; null
  /// outside of a run. Lives as long as the run, and is the run's alone.
  [[nodiscard]] WaitingBudget* budgetOf(const boost::asio::any_io_executor& executor);
  [[nodiscard]] std::chrono::nanoseconds patience() const { return patience_; }

 private:
  struct Runs;

  std::chrono::nanoseconds patience_;
  std::unique_ptr<Runs> runs_;
  std::unique_ptr<BusThread> thread_;
};

}  // namespace kivo::linux_platform
