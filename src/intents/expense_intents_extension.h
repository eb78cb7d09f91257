// Declares the extension to the platform: its name, intents and shortcuts.
#pragma once

#include "platform/app_intents/app_extension.h"

namespace kivo {

/// The main type of the extension's process. The platform provides `main`.
struct ExpenseIntentsExtension : platform::AppExtension<ExpenseIntentsExtension> {
  /// Returns the extension with its intents and shortcuts. A new intent needs one line here to be
  /// offered everywhere.
  static platform::AppIntentsExtension make();
};

}  // namespace kivo
