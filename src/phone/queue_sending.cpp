#include "phone/queue_sending.h"

#include <algorithm>
#include <vector>

#include "platform/linux/http/last_exchange.h"
#include "queue/pending_sms_queue.h"
#include "queue/sms_queue_drainer.h"

namespace kivo {
namespace {

using End = QueueSending::Result::End;
using Items = std::vector<PendingSmsItem>;

bool wasAnswered() {
  const auto last = linux_platform::lastExchange();
  return last && last->statusCode;
}

}  // namespace

platform::Task<void> QueueSending::send(SharedStore& store, std::string userId,
                                        std::string supabaseUrl, Result& result) {
  const std::size_t count = PendingSmsQueue::load(store).size();
  for (std::size_t tried = 0; tried < count && result.end == End::triedAll; ++tried) {
    const Items before = PendingSmsQueue::load(store);
    if (before.empty()) co_return;
    co_await SmsQueueDrainer::drain(1, store, userId, supabaseUrl);
    const Items after = PendingSmsQueue::load(store);

    const PendingSmsItem& first = before.front();
    const auto same = std::find_if(after.begin(), after.end(),
                                   [&](const PendingSmsItem& item) { return item.id == first.id; });
    if (same == after.end()) {
      ++(first.retryCount < SmsQueueDrainer::retryLimit ? result.sent : result.dropped);
    } else if (same->retryCount == first.retryCount) {
      result.end = End::busy;
    } else {
      ++result.failed;
      if (!wasAnswered()) result.end = End::noAnswer;
    }
  }
}

}  // namespace kivo
