#include "intents/process_sms_intent.h"

#include <optional>
#include <utility>
#include <variant>

#include "intents/intent_run.h"
#include "platform/foundation/character_set.h"

namespace kivo {

using platform::IntentResult;
using platform::LocalizedStringResource;
using platform::Task;

const LocalizedStringResource& ProcessSMSIntent::title() const {
  static const LocalizedStringResource made{"Process Bank SMS"};
  return made;
}

Task<IntentResult> ProcessSMSIntent::perform() {
  if (platform::trimmingWhitespaces(smsText.value()).empty()) {
    co_return answer("No SMS text provided");
  }

  auto begun = IntentRun::begin();
  if (auto* const refusal = std::get_if<IntentResult>(&begun)) co_return *refusal;
  auto& run = std::get<IntentRun>(begun);

  const std::optional<SMSExtractionResponse> response =
      co_await run.extract(smsText.value(), typeName());
  if (!response) {
    PendingSmsItem copy = run.offlineCopy(smsText.value(), "sms");
    co_return co_await run.saveOffline(std::move(copy));
  }

  if (!response->saved || !response->expense) {
    const bool declined = response->reason == "declined";
    co_return answer(declined ? "Transaction was declined - not tracked"
                              : "SMS ignored - not a transaction");
  }

  const std::string type = response->transaction_type.value_or("expense");
  if (type == "expense") run.countInTotals(*response->expense);
  co_return co_await run.concludeSaved(moneyFlow(type), *response->expense);
}

}  // namespace kivo
