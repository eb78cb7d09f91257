// Calls the extension over the session bus.
#pragma once

#include <string>

#include "money/money.h"

namespace kivo::app {

class AppWindow;

/// Has the extension perform `AddExpenseIntent`, and shows its dialog when it answers, or why it
/// did not. Returns at once. `window` must live until the application ends.
void performAddExpense(AppWindow& window, const money::Money& amount, const std::string& merchant);

}  // namespace kivo::app
