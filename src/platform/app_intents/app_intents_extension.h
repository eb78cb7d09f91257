// The declaration of an intents extension.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"
#include "platform/app_intents/app_shortcut.h"

namespace kivo::platform {

/// All that the system knows of an extension: command line, bus interface, catalog, prompts and
/// phrases are derived from it. Its string views must point to static storage.
struct AppIntentsExtension {
  /// The name in phrases and notifications.
  std::string_view applicationName;
  /// The bundle under which the extension posts notifications.
  std::string_view bundleIdentifier;
  /// Factories, one for each type of intent. Each run creates a new intent.
  std::vector<std::function<std::unique_ptr<AppIntent>()>> intents;
  /// Creates the list of shortcuts.
  std::function<std::vector<AppShortcut>()> appShortcuts;
  ShortcutTileColor shortcutTileColor = ShortcutTileColor::standard;

  /// Creates an intent of the type `typeName`; null when the extension has no such type.
  [[nodiscard]] std::unique_ptr<AppIntent> makeIntent(std::string_view typeName) const {
    for (const auto& make : intents) {
      auto intent = make();
      if (intent->typeName() == typeName) return intent;
    }
    return nullptr;
  }
};

}  // namespace kivo::platform
