// Runs tasks on worker threads. Decides nothing about what they do.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/concurrency/task.h"

namespace kivo::linux_platform {

/// A task under way. Copies speak of the same task. Usable from any thread, while the executor
/// lives.
class RunningTask {
 public:
  /// Cancels the exchange that the task waits for, and those it would still begin. The task goes on
  /// and finishes. Returns at once.
  void cancel();

  /// Blocks the calling thread until the task has ended; throws what the task threw.
  void wait();

  /// As `wait`, for at most `limit`; true when the task has ended.
  bool waitFor(std::chrono::milliseconds limit);

 private:
  friend class TaskExecutor;
  struct State;
  explicit RunningTask(std::shared_ptr<State> state) : state_(std::move(state)) {}
  std::shared_ptr<State> state_;
};

/// A pool of worker threads. Steps of one task never run at the same time; different tasks do.
class TaskExecutor {
 public:
  /// Throws std::runtime_error when the threads cannot be started.
  explicit TaskExecutor(unsigned workers);
  /// Waits for all tasks that were started. SIGTERM and SIGINT end the process again.
  ~TaskExecutor();
  TaskExecutor(const TaskExecutor&) = delete;
  TaskExecutor& operator=(const TaskExecutor&) = delete;

  /// Begins `task` on a worker and returns at once.
  RunningTask start(platform::Task<void> task);

  /// From now on the first SIGTERM or SIGINT has `action` called on a worker, and none ends the
  /// process while the executor lives, unless no file descriptor is left to wait for them with.
  /// Once.
  void onTermination(std::function<void()> action);

  /// Performs `task` on a worker and blocks the calling thread until it has ended; throws what it
  /// threw. From before it begins until the executor ends, SIGTERM and SIGINT cancel `task` instead
  /// of ending the process, unless no file descriptor is left to wait for them with.
  /// Once, and not beside `onTermination`.
  void perform(platform::Task<void> task);

 private:
  struct Pool;
  std::unique_ptr<Pool> pool_;
};

}  // namespace kivo::linux_platform
