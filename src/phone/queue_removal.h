// Takes one text out of the offline queue for good. Asks nobody.
#pragma once

#include <cstddef>

#include "queue/pending_sms_item.h"
#include "store/shared_store.h"

namespace kivo::QueueRemoval {

enum class Outcome {
  removed,
  /// Texts are being sent, or were by a run that ended in the middle of it less than 30 s ago.
  busy,
  /// The text is not in the queue any more.
  gone,
  /// The store refused to be written; a line on standard error has said why.
  notWritten,
};

/// Removes `shown`, which stood at `index` (from 0) when it was read, from the queue as it is now:
/// from there if it is still there, else from where it has moved to, which may be with another
/// retry count. Queue and count are one write group, durable on return, and the text is then gone
/// from the store's files as after a drain. Holds the drain's lock meanwhile, so that no drain
/// brings the text back; a text that is queued at the very moment may be lost, as between two runs.
/// Does not suspend.
Outcome remove(const PendingSmsItem& shown, std::size_t index, SharedStore& store);

}  // namespace kivo::QueueRemoval
