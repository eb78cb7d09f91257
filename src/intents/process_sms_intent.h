// "Process Bank SMS": records what a bank's message says. Reads no message from the phone itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"

namespace kivo {

/// Takes the full text of a bank's SMS, has the backend extract the transaction and answers with
/// one dialog. A text that cannot be sent is kept in the offline queue under the same key.
class ProcessSMSIntent : public platform::AppIntent {
 public:
  platform::IntentParameter<std::string> smsText{
      {.name = "smsText", .title = {"SMS Text"}, .description = {"The bank SMS message text"}}};

  [[nodiscard]] std::string_view typeName() const override { return "ProcessSMSIntent"; }
  [[nodiscard]] const platform::LocalizedStringResource& title() const override;
  [[nodiscard]] bool openAppWhenRun() const override { return false; }
  std::vector<platform::AnyIntentParameter*> parameters() override { return {&smsText}; }
  platform::Task<platform::IntentResult> perform() override;
};

}  // namespace kivo
