// Sends queued texts again. Decides neither when, nor how a live text is handled.
#pragma once

#include <cstdint>
#include <string>

#include "platform/concurrency/task.h"
#include "store/shared_store.h"

namespace kivo::SmsQueueDrainer {

/// How many failed attempts a text has before a drain drops it without another one.
inline constexpr std::int64_t retryLimit = 10;

/// Sends the first `maxItems` queued texts again, one after the other, with the present credentials
/// and each with its own key and date. Answered texts leave the queue, and saved ones are
/// announced; failed ones go to its end, until the tenth failure drops them. Neither totals nor
/// widget change.
///
/// Suspends for each exchange and notification; returns when the queue is saved. Does nothing while
/// another drain holds the lock. `store` is written at the end only, from the queue as it was at
/// the beginning: what another run enqueues meanwhile is overwritten. `store` must outlive the
/// task. Never throws; a negative `maxItems` stops the process.
platform::Task<void> drain(int maxItems, SharedStore& store, std::string userId,
                           std::string supabaseUrl);

/// Takes the drain lock; false, with nothing written, when a drain took it less than 30 s ago.
/// Advisory and not atomic: two drains that begin at once may both take it. Not synced: a power cut
/// may free it.
bool tryAcquireLock(SharedStore& store);

/// Frees the drain lock. Not synced: after a power cut it may be held until it is stale.
void releaseLock(SharedStore& store);

}  // namespace kivo::SmsQueueDrainer
