#include "intents/expense_intents_extension.h"

#include <memory>

#include "intents/process_sms_intent.h"

namespace kivo {

platform::AppIntentsExtension ExpenseIntentsExtension::make() {
  return {.intents = {[] { return std::make_unique<ProcessSMSIntent>(); }}};
}

}  // namespace kivo
