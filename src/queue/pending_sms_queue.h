// Keeps the texts that could not be sent, in the shared store. Sends none: that is SmsQueueDrainer.
#pragma once

#include <cstddef>
#include <vector>

#include "queue/pending_sms_item.h"
#include "store/shared_store.h"

namespace kivo::PendingSmsQueue {

/// The most texts that are kept; the oldest go first.
inline constexpr std::size_t capacity = 200;

// None of these throws, suspends or reports a failure, and none takes a lock: when two runs change
// the queue at the same time, the later save wins.

/// The queued items, oldest first; none when the store holds no queue, or one that cannot be read.
std::vector<PendingSmsItem> load(const SharedStore& store);

/// Replaces the stored queue by `items` and its count, and synchronizes. Items that JSON cannot
/// carry (an amount that is not finite) empty the stored queue, while the count stays that of
/// `items`.
void save(const std::vector<PendingSmsItem>& items, SharedStore& store);

/// Adds `item` at the end and saves, unless the same text was queued less than 60 s before or after
/// it: then nothing is written. A time that cannot be read counts as now.
void enqueue(PendingSmsItem item, SharedStore& store);

}  // namespace kivo::PendingSmsQueue
