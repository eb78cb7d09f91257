// The steps that the intents share. Each intent decides which of them to take.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "extraction/sms_extraction_response.h"
#include "feedback/transaction_words.h"
#include "platform/app_intents/intent_dialog.h"
#include "platform/concurrency/task.h"
#include "queue/pending_sms_item.h"
#include "store/shared_store.h"

namespace kivo {

/// Returns a result with the dialog `text`.
platform::IntentResult answer(std::string text);

/// One run of an intent that sends a text: its store handle, the credentials read at the start, and
/// the key and date that the request and its queued copy share. Must outlive the tasks that it
/// returns. Not thread-safe.
class IntentRun {
 public:
  /// Opens the store, reads the credentials and makes the key and the date. If the store cannot be
  /// opened or no user is signed in, returns the result to answer with instead. Sends and writes
  /// nothing.
  static std::variant<IntentRun, platform::IntentResult> begin();

  /// Sends `text` and returns the backend's answer. On any failure prints one line "<intentName>
  /// error: <description>" on standard output and returns nullopt. Suspends during the exchange.
  platform::Task<std::optional<SMSExtractionResponse>> extract(std::string text,
                                                               std::string_view intentName);

  /// Returns the copy of this run's request for the offline queue, with its key and date and the
  /// current time.
  [[nodiscard]] PendingSmsItem offlineCopy(std::string text, std::string_view source) const;

  /// Returns the user's currency code.
  [[nodiscard]] std::string currency() const;

  /// Adds `item` to the offline queue, posts a notification that the expense is saved offline, and
  /// returns the dialog that says so.
  platform::Task<platform::IntentResult> saveOffline(PendingSmsItem item);

  /// Adds a saved expense to the widget's totals, unless they exclude its category.
  void countInTotals(const SMSExtractionResponse::SavedExpense& expense);

  /// Finishes a run whose transaction was saved: reloads the widget, posts a notification, resends
  /// up to three queued texts and returns the dialog.
  platform::Task<platform::IntentResult> concludeSaved(MoneyFlow flow,
                                                       SMSExtractionResponse::SavedExpense expense);

 private:
  IntentRun(SharedStore store, std::string userId, std::string supabaseUrl);

  SharedStore store_;
  std::string userId_;
  std::string supabaseUrl_;
  std::string idempotencyKey_;
  std::string expenseDate_;
};

}  // namespace kivo
