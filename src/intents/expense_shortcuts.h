// The spoken phrases for Kivo's intents.
#pragma once

#include <vector>

#include "platform/app_intents/app_shortcut.h"

namespace kivo {

struct ExpenseShortcuts {
  /// Builds the shortcuts, in the order in which they are offered.
  static std::vector<platform::AppShortcut> appShortcuts();
};

}  // namespace kivo
