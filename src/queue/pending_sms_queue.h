// Keeps the texts that could not be sent, in the shared store. SmsQueueDrainer resends them.
#pragma once

#include <cstddef>
#include <vector>

#include "queue/pending_sms_item.h"
#include "store/shared_store.h"

namespace kivo::PendingSmsQueue {

/// The largest number of texts that are kept. The oldest are dropped first.
inline constexpr std::size_t capacity = 200;

// These functions neither throw nor suspend, do not report failures and take no lock: when two runs
// change the queue at the same time, the later save wins.

/// Returns the queued items, oldest first; empty when the store holds no queue or one that cannot
/// be decoded.
std::vector<PendingSmsItem> load(const SharedStore& store);

/// Replaces the stored queue by `items` and the stored count by their number, and synchronizes. If
/// JSON cannot represent an item (an amount that is not finite), the stored queue becomes empty,
/// while the count is still that of `items`.
void save(const std::vector<PendingSmsItem>& items, SharedStore& store);

/// Appends `item`, drops the oldest items beyond `capacity` and saves. Writes nothing when the same
/// text was queued less than 60 s before or after. A time that cannot be parsed counts as now.
void enqueue(PendingSmsItem item, SharedStore& store);

}  // namespace kivo::PendingSmsQueue
