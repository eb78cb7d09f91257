// Runs tasks on worker threads.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/concurrency/task.h"

namespace kivo::linux_platform {

/// A running task. Copies refer to the same task. Thread-safe. Must not be cancelled after its
/// executor is destroyed.
class RunningTask {
 public:
  /// Cancels the network exchange that the task waits for, and any that it begins later. The task
  /// continues to its end. Returns at once.
  void cancel();

  /// Blocks until the task has ended. Rethrows its exception.
  void wait();

  /// Blocks for at most `limit`. Returns whether the task has ended; rethrows nothing.
  bool waitFor(std::chrono::milliseconds limit);

 private:
  friend class TaskExecutor;
  struct State;
  explicit RunningTask(std::shared_ptr<State> state) : state_(std::move(state)) {}
  std::shared_ptr<State> state_;
};

/// A pool of worker threads. Steps of one task never run at the same time; different tasks run in
/// parallel.
class TaskExecutor {
 public:
  /// Throws Failure when a thread cannot be started.
  explicit TaskExecutor(unsigned workers);
  /// Waits until all started tasks have ended, then restores the default action of SIGTERM and
  /// SIGINT.
  ~TaskExecutor();
  TaskExecutor(const TaskExecutor&) = delete;
  TaskExecutor& operator=(const TaskExecutor&) = delete;

  /// Starts `task` on a worker and returns at once.
  RunningTask start(platform::Task<void> task);

  /// Calls `action` on a worker at the first SIGTERM or SIGINT. From now until the executor is
  /// destroyed these signals do not end the process. Has no effect when no file descriptor is left.
  /// Call it at most once.
  void onTermination(std::function<void()> action);

  /// Runs `task` on a worker and blocks until it has ended. Rethrows its exception. From before the
  /// start of `task` until the executor is destroyed, the first SIGTERM or SIGINT cancels `task`
  /// and none ends the process, unless no file descriptor is left. Call it at most once, and not
  /// together with `onTermination`.
  void perform(platform::Task<void> task);

 private:
  struct Pool;
  std::unique_ptr<Pool> pool_;
};

}  // namespace kivo::linux_platform
