// The steps that the intents have in common. Which of them an intent takes, it decides itself.
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

/// A result whose dialog is `text`.
platform::IntentResult answer(std::string text);

/// One run of an intent that sends a text: its store handle, the credentials as they stand now, and
/// the key and date that the request and its queued copy share. Owned by the run, and outlives the
/// tasks that it returns.
class IntentRun {
 public:
  /// Opens the store, reads the credentials and makes key and date; or yields the answer for a
  /// store that cannot be opened or a person who is not signed in, with nothing done.
  static std::variant<IntentRun, platform::IntentResult> begin();

  /// Sends `text` and yields the backend's answer; none for a failure of whatever kind, of which
  /// one line "<intentName> error: <description>" on standard output tells.
  platform::Task<std::optional<SMSExtractionResponse>> extract(std::string text,
                                                               std::string_view intentName);

  /// The copy of this run's request that goes into the queue, with its key, date and the time.
  [[nodiscard]] PendingSmsItem offlineCopy(std::string text, std::string_view source) const;

  /// The person's currency code.
  [[nodiscard]] std::string currency() const;

  /// Queues `item`, posts that the expense is saved offline and answers so.
  platform::Task<platform::IntentResult> saveOffline(PendingSmsItem item);

  /// Adds a saved expense to the widget's totals, unless its category is left out of them.
  void countInTotals(const SMSExtractionResponse::SavedExpense& expense);

  /// What follows every saved transaction: the widget reloads, a notification tells of it, up to
  /// three queued texts are sent again, and the dialog answers.
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
