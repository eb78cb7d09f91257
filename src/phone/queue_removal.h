// Removes one text from the offline queue.
#pragma once

#include <cstddef>

#include "queue/pending_sms_item.h"
#include "store/shared_store.h"

namespace kivo::QueueRemoval {

enum class Outcome {
  removed,
  /// A drain is running, or was killed less than 30 s ago.
  busy,
  /// The text is no longer in the queue.
  gone,
  /// The store could not be written; a line on standard error has said why.
  notWritten,
};

/// Removes `shown`, which was at `index` (from 0) when it was read, from the current queue: at that
/// index if it is still there, otherwise where it has moved to, possibly with another retry count.
/// Queue and count are one write group, durable on return; the text is also erased from the store's
/// files, as after a drain. Holds the drain lock meanwhile, so that no drain restores the text. A
/// text that is queued at the same moment may be lost, as between two runs. Does not suspend.
Outcome remove(const PendingSmsItem& shown, std::size_t index, SharedStore& store);

}  // namespace kivo::QueueRemoval
