#include "intents/add_expense_intent.h"

#include <cmath>
#include <optional>
#include <utility>
#include <variant>

#include "intents/intent_run.h"
#include "platform/foundation/character_set.h"
#include "platform/foundation/number_text.h"

namespace kivo {

using platform::IntentResult;
using platform::LocalizedStringResource;
using platform::Task;

const LocalizedStringResource& AddExpenseIntent::title() const {
  static const LocalizedStringResource made{"Add Expense"};
  return made;
}

// NaN counts as no amount.
bool AddExpenseIntent::nothingToTrack() const {
  return !(amount.value() > 0) || platform::trimmingWhitespaces(merchant.value()).empty();
}

std::string AddExpenseIntent::paymentText(const std::string& currency) const {
  return "Paid " + platform::doubleText(std::fabs(amount.value())) + " " + currency + " at " +
         merchant.value();
}

Task<IntentResult> AddExpenseIntent::perform() {
  if (nothingToTrack()) co_return answer("No expense to track");

  auto begun = IntentRun::begin();
  if (auto* const refusal = std::get_if<IntentResult>(&begun)) co_return *refusal;
  auto& run = std::get<IntentRun>(begun);

  const std::string text = paymentText(run.currency());
  const std::optional<SMSExtractionResponse> response = co_await run.extract(text, typeName());
  if (!response) {
    PendingSmsItem copy = run.offlineCopy(text, "apple_pay");
    copy.amount = amount.value();
    copy.merchant = merchant.value();
    co_return co_await run.saveOffline(std::move(copy));
  }

  if (!response->saved || !response->expense) co_return answer("Failed to track expense");

  run.countInTotals(*response->expense);
  co_return co_await run.concludeSaved(MoneyFlow::spent, *response->expense);
}

}  // namespace kivo
