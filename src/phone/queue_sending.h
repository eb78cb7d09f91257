// Resends the queued texts when the user asks for it.
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
    /// Another drain is running, or was killed less than 30 s ago.
    busy,
    /// The backend did not respond to a text; those after it were not tried.
    noAnswer,
  };

  End end = End::triedAll;
  /// Answered by the backend and removed from the queue.
  std::size_t sent = 0;
  /// Tried and still in the queue.
  std::size_t failed = 0;
  /// Not tried, since they had failed ten times before, and removed from the queue.
  std::size_t dropped = 0;
};

/// Drains the queue one text at a time, each text at most once, under the drain lock, until the
/// backend does not respond. Posts notifications as a drain does. `store` and `result` must outlive
/// the task, which suspends during each exchange and notification.
platform::Task<void> send(SharedStore& store, std::string userId, std::string supabaseUrl,
                          Result& result);

}  // namespace kivo::QueueSending
