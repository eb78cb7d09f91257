#include "phone/queue_removal.h"

#include <algorithm>
#include <vector>

#include "queue/pending_sms_queue.h"
#include "queue/sms_queue_drainer.h"

namespace kivo {
namespace {

using Outcome = QueueRemoval::Outcome;
using Items = std::vector<PendingSmsItem>;

// The retry count is ignored: a failed drain in between has increased it.
bool isSame(const PendingSmsItem& shown, PendingSmsItem queued) {
  queued.retryCount = shown.retryCount;
  return queued == shown;
}

Items::iterator placeOf(const PendingSmsItem& shown, std::size_t index, Items& items) {
  if (index < items.size() && isSame(shown, items[index])) {
    return items.begin() + static_cast<std::ptrdiff_t>(index);
  }
  return std::find_if(items.begin(), items.end(),
                      [&](const PendingSmsItem& queued) { return isSame(shown, queued); });
}

Outcome removeLocked(const PendingSmsItem& shown, std::size_t index, SharedStore& store) {
  Items items = PendingSmsQueue::load(store);
  const auto place = placeOf(shown, index, items);
  if (place == items.end()) return Outcome::gone;
  items.erase(place);
  PendingSmsQueue::save(items, store);
  // Saving does not report failures; a failed save discards its writes, so reading back finds the
  // old queue.
  return PendingSmsQueue::load(store) == items ? Outcome::removed : Outcome::notWritten;
}

}  // namespace

Outcome QueueRemoval::remove(const PendingSmsItem& shown, std::size_t index, SharedStore& store) {
  if (!SmsQueueDrainer::tryAcquireLock(store)) return Outcome::busy;
  const Outcome outcome = removeLocked(shown, index, store);
  SmsQueueDrainer::releaseLock(store);
  return outcome;
}

}  // namespace kivo
