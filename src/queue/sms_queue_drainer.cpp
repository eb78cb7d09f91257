#include "queue/sms_queue_drainer.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "extraction/sms_extraction_client.h"
#include "feedback/expense_notifier.h"
#include "feedback/transaction_words.h"
#include "platform/foundation/date.h"
#include "platform/foundation/fatal_stop.h"
#include "queue/pending_sms_queue.h"

namespace kivo {
namespace {

constexpr double staleAfterSeconds = 30;

// No fsync is needed: a power cut that undoes taking the lock frees it, and one that undoes
// releasing it leaves a lock that becomes stale.
void writeLock(double time, SharedStore& store) {
  store.writeFloat(StoreKeys::smsQueueDrainLock, time);
  store.publish();
}

// Drops the reason of a failure, which a drain does not need. It returns instead of throwing since
// a coroutine cannot suspend inside an exception handler.
platform::Task<std::optional<SMSExtractionResponse>> sendAgain(PendingSmsItem item,
                                                               std::string userId,
                                                               std::string supabaseUrl) {
  try {
    SMSExtractionResponse response = co_await SMSExtractionClient::extract(
        item.smsText, userId, supabaseUrl, item.expenseDate, item.id);
    co_return response;
  } catch (const std::exception&) {
    co_return std::nullopt;
  }
}

platform::Task<void> announce(const SharedStore& store, SMSExtractionResponse response) {
  const ToldTransaction transaction{
      .flow = moneyFlow(response.transaction_type.value_or("expense")),
      .amount = response.expense->amount,
      .description = response.expense->description,
      .category = response.expense->category,
  };
  std::string title = TransactionWords::notificationTitle(transaction);
  std::string body = TransactionWords::notificationBody(store, transaction);
  co_await ExpenseNotifier::post(std::move(title), std::move(body));
}

std::vector<PendingSmsItem> remaining(std::vector<PendingSmsItem> snapshot,
                                      const std::set<std::string>& handledIds,
                                      const std::vector<PendingSmsItem>& retried) {
  std::erase_if(snapshot, [&](const PendingSmsItem& item) { return handledIds.contains(item.id); });
  snapshot.insert(snapshot.end(), retried.begin(), retried.end());
  return snapshot;
}

}  // namespace

bool SmsQueueDrainer::tryAcquireLock(SharedStore& store) {
  const double now = platform::secondsSince1970(platform::Date::now());
  const double last = store.readFloat(StoreKeys::smsQueueDrainLock);
  if (now - last < staleAfterSeconds) return false;
  writeLock(now, store);
  return true;
}

void SmsQueueDrainer::releaseLock(SharedStore& store) { writeLock(0, store); }

platform::Task<void> SmsQueueDrainer::drain(int maxItems, SharedStore& store, std::string userId,
                                            std::string supabaseUrl) {
  if (maxItems < 0) platform::fatalStop("a drain was asked for a negative number of items");
  if (!tryAcquireLock(store)) co_return;

  const std::vector<PendingSmsItem> snapshot = PendingSmsQueue::load(store);
  if (snapshot.empty()) {
    releaseLock(store);
    co_return;
  }

  std::set<std::string> handledIds;
  std::vector<PendingSmsItem> retried;
  const std::size_t batchSize = std::min(snapshot.size(), static_cast<std::size_t>(maxItems));
  for (std::size_t index = 0; index < batchSize; ++index) {
    const PendingSmsItem& item = snapshot[index];
    handledIds.insert(item.id);
    if (item.retryCount >= retryLimit) continue;

    const auto response = co_await sendAgain(item, userId, supabaseUrl);
    if (!response) {
      retried.push_back(item);
      ++retried.back().retryCount;
    } else if (response->saved && response->expense) {
      co_await announce(store, *response);
    }
  }

  PendingSmsQueue::save(remaining(snapshot, handledIds, retried), store);
  releaseLock(store);
}

}  // namespace kivo
