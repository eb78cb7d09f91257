// The "Process Bank SMS" intent: records what a bank message says. Its caller passes the message
// in; it does not read the phone's messages.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"

namespace kivo {

/// Takes the full text of a bank message, sends it to the backend and returns one dialog. If the
/// exchange fails, the text goes to the offline queue with the same idempotency key.
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
