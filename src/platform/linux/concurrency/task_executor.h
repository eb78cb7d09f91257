// Runs tasks, on worker threads or on the calling one. Decides nothing about what they do.
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
  explicit TaskExecutor(unsigned workers);
  /// Waits for all tasks that were started.
  ~TaskExecutor();
  TaskExecutor(const TaskExecutor&) = delete;
  TaskExecutor& operator=(const TaskExecutor&) = delete;

  /// Begins `task` on a worker and returns at once.
  RunningTask start(platform::Task<void> task);

  /// From now on the first SIGTERM or SIGINT has `action` called on a worker, and none ends the
  /// process while the executor lives; they do where no descriptor is left to wait for them with.
  /// Once.
  void onTermination(std::function<void()> action);

  /// Performs `task` on the calling thread, without workers, and returns when it has ended; throws
  /// what it threw. From before it begins until it has ended, SIGTERM and SIGINT cancel `task`
  /// instead of ending the process; where no descriptor is left to wait for them with, they end it.
  static void performHere(platform::Task<void> task);

 private:
  struct Pool;
  RunningTask start(platform::Task<void> task, std::function<void()> afterwards);

  std::unique_ptr<Pool> pool_;
};

}  // namespace kivo::linux_platform
