// The spoken phrases for Kivo's intents. Hears none.
#pragma once

#include <vector>

#include "platform/app_intents/app_shortcut.h"

namespace kivo {

struct ExpenseShortcuts {
  /// The shortcuts in the order in which they are offered, built anew on each request.
  static std::vector<platform::AppShortcut> appShortcuts();
};

}  // namespace kivo
