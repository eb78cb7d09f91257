// Resends queued texts.
#pragma once

#include <cstdint>
#include <string>

#include "platform/concurrency/task.h"
#include "store/shared_store.h"

namespace kivo::SmsQueueDrainer {

/// A text with this many failed resends is dropped without another attempt.
inline constexpr std::int64_t retryLimit = 10;

/// Resends the first `maxItems` queued texts one after the other, with the given credentials and
/// each with its own key and date. Texts that the backend answered leave the queue, and a
/// notification announces each saved one. Failed ones move to the end of the queue. A text that has
/// already failed `retryLimit` times is dropped without being sent. Totals and widget do not
/// change.
///
/// Suspends during each exchange and notification; returns when the queue is saved. Does nothing
/// while another drain holds the lock. Saves the queue once, at the end, from a snapshot taken at
/// the beginning: an item that another run enqueues meanwhile is lost. `store` must outlive the
/// task. Never throws. A negative `maxItems` stops the process.
platform::Task<void> drain(int maxItems, SharedStore& store, std::string userId,
                           std::string supabaseUrl);

/// Takes the drain lock. Returns false, with nothing written, when it was taken less than 30 s ago,
/// or at a time still to come, and not released. Advisory and not atomic: two drains that begin at
/// the same moment may both take it. Written without an fsync: a power cut may free it.
bool tryAcquireLock(SharedStore& store);

/// Releases the drain lock. Written without an fsync: after a power cut the lock may be held until
/// it is stale.
void releaseLock(SharedStore& store);

}  // namespace kivo::SmsQueueDrainer
