// What the extension offers to the system. Holds no logic.
#pragma once

#include <string_view>

#include "platform/app_intents/app_intent.h"
#include "store/store_keys.h"

namespace kivo {

struct ExpenseIntentsExtension {
  /// In whose name the extension notifies.
  static constexpr std::string_view bundleIdentifier = extensionBundle;

  /// The extension with its intents.
  static platform::AppIntentsExtension make();
};

}  // namespace kivo
