// The spoken phrases that an extension offers for its intents. Hears none: that is the voice layer.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"

namespace kivo::platform {

/// A phrase template: some words and, right after them and at its end, the application's name.
struct AppShortcutPhrase {
  /// With the blank that stands before the name: "Add expense in ".
  std::string_view words;

  /// The phrase as it is said for an application called `applicationName`.
  [[nodiscard]] std::string said(std::string_view applicationName) const;
};

/// An intent as it is offered without any set-up by the person.
struct AppShortcut {
  /// Freshly made, with its parameters empty.
  std::unique_ptr<AppIntent> intent;
  std::vector<AppShortcutPhrase> phrases;
  LocalizedStringResource shortTitle;
  /// A symbol of the system's own set, by name.
  std::string_view systemImageName;
};

/// The colour of the tiles on which the system shows shortcuts.
enum class ShortcutTileColor { standard };

}  // namespace kivo::platform
