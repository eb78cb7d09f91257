#include "intents/intent_run.h"

#include <exception>
#include <utility>

#include "extraction/sms_extraction_client.h"
#include "feedback/amount_formatter.h"
#include "feedback/expense_notifier.h"
#include "feedback/widget_stats.h"
#include "intents/stats_excluded_categories.h"
#include "platform/foundation/date.h"
#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/foundation/standard_output.h"
#include "platform/foundation/uuid.h"
#include "platform/widget_kit/widget_center.h"
#include "queue/pending_sms_queue.h"
#include "queue/sms_queue_drainer.h"

namespace kivo {

using platform::IntentResult;
using platform::Task;

namespace {

constexpr int drainedPerRun = 3;

}  // namespace

IntentResult answer(std::string text) { return {platform::IntentDialog{std::move(text)}}; }

IntentRun::IntentRun(SharedStore store, std::string userId, std::string supabaseUrl)
    : store_(std::move(store)),
      userId_(std::move(userId)),
      supabaseUrl_(std::move(supabaseUrl)),
      idempotencyKey_(platform::UUID::uuidString()),
      expenseDate_(SMSExtractionClient::currentExpenseDate()) {}

std::variant<IntentRun, IntentResult> IntentRun::begin() {
  auto store = SharedStore::open(appGroup);
  if (!store) return answer("Failed to access app storage");

  auto userId = store->readNonEmptyText(StoreKeys::userId);
  auto supabaseUrl = store->readNonEmptyText(StoreKeys::supabaseUrl);
  if (!userId || !supabaseUrl) return answer("Please open Kivo app and sign in first");

  return IntentRun(std::move(*store), std::move(*userId), std::move(*supabaseUrl));
}

Task<std::optional<SMSExtractionResponse>> IntentRun::extract(std::string text,
                                                              std::string_view intentName) {
  try {
    SMSExtractionResponse response = co_await SMSExtractionClient::extract(
        std::move(text), userId_, supabaseUrl_, expenseDate_, idempotencyKey_);
    co_return response;
  } catch (const std::exception& error) {
    platform::printLine(std::string(intentName) + " error: " + error.what());
    co_return std::nullopt;
  }
}

PendingSmsItem IntentRun::offlineCopy(std::string text, std::string_view source) const {
  return {
      .id = idempotencyKey_,
      .smsText = std::move(text),
      .expenseDate = expenseDate_,
      .queuedAt = platform::ISO8601DateFormatter::string(platform::Date::now()),
      .retryCount = 0,
      .source = std::string(source),
  };
}

std::string IntentRun::currency() const { return AmountFormatter::currencyCode(store_); }

Task<IntentResult> IntentRun::saveOffline(PendingSmsItem item) {
  PendingSmsQueue::enqueue(std::move(item), store_);
  co_await ExpenseNotifier::post("📡 Expense Saved Offline",
                                 "Will be processed when you're back online");
  co_return answer("Saved offline - will process when connected");
}

void IntentRun::countInTotals(const SMSExtractionResponse::SavedExpense& expense) {
  if (StatsExcludedCategories::contains(expense.category)) return;
  WidgetStats::recordExpense(store_, expense.amount);
}

Task<IntentResult> IntentRun::concludeSaved(MoneyFlow flow,
                                            SMSExtractionResponse::SavedExpense expense) {
  platform::WidgetCenter::shared().reloadAllTimelines();

  const ToldTransaction transaction{.flow = flow,
                                    .amount = expense.amount,
                                    .description = std::move(expense.description),
                                    .category = std::move(expense.category)};
  std::string title = TransactionWords::notificationTitle(transaction);
  std::string body = TransactionWords::notificationBody(store_, transaction);
  co_await ExpenseNotifier::post(std::move(title), std::move(body));

  co_await SmsQueueDrainer::drain(drainedPerRun, store_, userId_, supabaseUrl_);
  co_return answer(TransactionWords::dialog(store_, transaction));
}

}  // namespace kivo
