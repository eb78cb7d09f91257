// Holds tasks until a test releases them, so that runs overlap. Blocks no worker.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/concurrency/task.h"

namespace kivo::testkit {

/// Open at first. Thread-safe; must outlive the tasks that reach it.
class Gate {
 public:
  /// From now on tasks are held.
  void close();
  /// Releases all tasks, the held ones and later ones.
  void open();
  /// Releases the task that has been held longest; there must be one.
  void letOneThrough();

  /// Blocks the calling thread until `count` tasks in total have reached the closed gate; aborts
  /// after 60 s.
  void waitForArrivals(std::size_t count);

  /// Suspends the calling task until it is released, cancelled or not.
  platform::Task<void> pass();
  /// As `pass`, but returns false at once when the task is or becomes cancelled.
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
