// Sends the texts that wait now, when a person asks for it. Decides nothing about a text: that is
// the drainer's.
#pragma once

#include <cstddef>
#include <string>

#include "platform/concurrency/task.h"
#include "store/shared_store.h"

namespace kivo::QueueSending {

struct Result {
  enum class End {
    /// Each text was tried once.
    triedAll,
    /// Another process is sending texts, or has died doing so less than 30 s ago.
    busy,
    /// The backend gave no answer to a text; those after it were not tried.
    noAnswer,
  };

  End end = End::triedAll;
  /// Answered by the backend, and no longer in the queue.
  std::size_t sent = 0;
  /// Tried and still in the queue.
  std::size_t failed = 0;
  /// Not tried, since they had failed ten times before; no longer in the queue.
  std::size_t dropped = 0;
};

/// Drains the queue text by text, each at most once, under the drain lock, until one is not
/// answered. Notifies as a drain does. `store` and `result` must outlive the task, which suspends
/// for each exchange and notification.
platform::Task<void> send(SharedStore& store, std::string userId, std::string supabaseUrl,
                          Result& result);

}  // namespace kivo::QueueSending
