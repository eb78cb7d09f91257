// What the extension offers to the system. Holds no logic.
#pragma once

#include "platform/app_intents/app_extension.h"

namespace kivo {

/// The main type of the extension's process; `main` is the platform's.
struct ExpenseIntentsExtension : platform::AppExtension<ExpenseIntentsExtension> {
  /// The extension with its intents and shortcuts; an intent is offered everywhere by one line
  /// here.
  static platform::AppIntentsExtension make();
};

}  // namespace kivo
