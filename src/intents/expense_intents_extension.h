// What the extension offers to the system. Holds no logic.
#pragma once

#include "platform/app_intents/app_intents_extension.h"

namespace kivo {

struct ExpenseIntentsExtension {
  /// The extension with its intents and shortcuts; an intent is offered everywhere by one line
  /// here.
  static platform::AppIntentsExtension make();
};

}  // namespace kivo
