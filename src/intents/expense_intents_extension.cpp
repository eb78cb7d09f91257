#include "intents/expense_intents_extension.h"

#include <memory>

#include "intents/add_expense_intent.h"
#include "intents/expense_shortcuts.h"
#include "intents/process_sms_intent.h"
#include "store/store_keys.h"

namespace kivo {

platform::AppIntentsExtension ExpenseIntentsExtension::make() {
  return {
      .applicationName = "Kivo",
      .bundleIdentifier = extensionBundle,
      .intents = {
          [] { return std::make_unique<AddExpenseIntent>(); },
          [] { return std::make_unique<ProcessSMSIntent>(); },
      },
      .appShortcuts = &ExpenseShortcuts::appShortcuts,
  };
}

}  // namespace kivo
