// Holds tasks back until a test lets them go on, so that runs can be made to overlap. Blocks no
// worker.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/concurrency/task.h"

namespace kivo::testkit {

/// Open at first. Usable from any thread; must outlive the tasks that come to it.
class Gate {
 public:
  /// From now on tasks are held.
  void close();
  /// Lets all go on, those held and those to come.
  void open();
  /// Lets the task go on that has been held longest; there must be one.
  void letOneThrough();

  /// Blocks the calling thread until, in all, `count` tasks have come while it was closed; stops
  /// the process when that takes more than 60 s.
  void waitForArrivals(std::size_t count);

  /// Suspends the calling task until it may go on, cancelled or not.
  platform::Task<void> pass();
  /// As `pass`, but ends at once when the task is cancelled, before or meanwhile: false then.
  platform::Task<bool> passUnlessCancelled();

 private:
  struct Waiter;
  enum class WhenCancelled { wait, leave };

  platform::Task<bool> hold(WhenCancelled whenCancelled);
  std::shared_ptr<Waiter> arrive(const boost::asio::any_io_executor& executor);
  void release(Waiter& waiter);

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::size_t arrivals_ = 0;
  bool isOpen_ = true;
  std::vector<std::shared_ptr<Waiter>> held_;
};

}  // namespace kivo::testkit
