#include "intents/expense_shortcuts.h"

#include <memory>
#include <utility>

#include "intents/add_expense_intent.h"
#include "intents/process_sms_intent.h"

namespace kivo {

std::vector<platform::AppShortcut> ExpenseShortcuts::appShortcuts() {
  std::vector<platform::AppShortcut> shortcuts;
  shortcuts.push_back({.intent = std::make_unique<AddExpenseIntent>(),
                       .phrases = {{"Add expense in "},
                                   {"Log expense to "},
                                   {"Track purchase with "},
                                   {"Record expense in "}},
                       .shortTitle = {"Add Expense"},
                       .systemImageName = "dollarsign.circle"});
  shortcuts.push_back({.intent = std::make_unique<ProcessSMSIntent>(),
                       .phrases = {{"Process bank SMS in "},
                                   {"Extract expense from SMS in "},
                                   {"Track SMS transaction in "}},
                       .shortTitle = {"Process Bank SMS"},
                       .systemImageName = "message.fill"});
  return shortcuts;
}

}  // namespace kivo
