// An intents extension as the system loads it. Runs nothing.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"
#include "platform/app_intents/app_shortcut.h"

namespace kivo::platform {

/// All that the system reads of an extension: command line, bus, catalog, prompts and phrases are
/// made from it alone. The texts live as long as the program.
struct AppIntentsExtension {
  /// As it stands in phrases and on notifications.
  std::string_view applicationName;
  /// In whose name the extension notifies.
  std::string_view bundleIdentifier;
  /// Makes an intent of each type, anew for each run.
  std::vector<std::function<std::unique_ptr<AppIntent>()>> intents;
  /// Makes the list of shortcuts, anew on each request.
  std::function<std::vector<AppShortcut>()> appShortcuts;
  ShortcutTileColor shortcutTileColor = ShortcutTileColor::standard;

  /// A new intent of the type `typeName`; null when the extension has none of that name.
  [[nodiscard]] std::unique_ptr<AppIntent> makeIntent(std::string_view typeName) const;
};

}  // namespace kivo::platform
