// The "Add Expense" intent: records a payment by its amount and merchant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"

namespace kivo {

/// Writes amount and merchant as a short payment sentence, sends that to the backend like a bank
/// message, and returns one dialog. If the exchange fails, the sentence goes to the offline queue
/// with the same idempotency key, the amount and the merchant.
class AddExpenseIntent : public platform::AppIntent {
 public:
  platform::IntentParameter<double> amount{{.name = "amount",
                                            .title = {"Amount"},
                                            .description = {"Transaction amount"},
                                            .controlStyle = platform::ControlStyle::stepper}};
  platform::IntentParameter<std::string> merchant{
      {.name = "merchant", .title = {"Merchant"}, .description = {"Merchant name or description"}}};

  [[nodiscard]] std::string_view typeName() const override { return "AddExpenseIntent"; }
  [[nodiscard]] const platform::LocalizedStringResource& title() const override;
  [[nodiscard]] bool openAppWhenRun() const override { return false; }
  std::vector<platform::AnyIntentParameter*> parameters() override { return {&amount, &merchant}; }
  platform::Task<platform::IntentResult> perform() override;

 private:
  [[nodiscard]] bool nothingToTrack() const;
  [[nodiscard]] std::string paymentText(const std::string& currency) const;
};

}  // namespace kivo
