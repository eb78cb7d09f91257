// Runs tasks of the extension to their end, on workers as in the real process.
#pragma once

#include <chrono>
#include <cstdlib>
#include <optional>
#include <utility>

#include "platform/linux/concurrency/task_executor.h"

namespace kivo::testkit {

/// The executor of the tests of this process.
linux_platform::TaskExecutor& executor();

template <typename Value>
platform::Task<void> keepResult(platform::Task<Value> task, std::optional<Value>* result) {
  *result = co_await std::move(task);
}

/// Waits for `task`, at most 60 s; returns its result or throws its exception.
template <typename Value>
Value await(platform::Task<Value> task) {
  std::optional<Value> result;
  auto running = executor().start(keepResult(std::move(task), &result));
  if (!running.waitFor(std::chrono::seconds(60))) std::abort();  // `result` must not go first
  running.wait();
  return std::move(*result);
}

inline void await(platform::Task<void> task) {
  auto running = executor().start(std::move(task));
  if (!running.waitFor(std::chrono::seconds(60))) std::abort();
  running.wait();
}

}  // namespace kivo::testkit
