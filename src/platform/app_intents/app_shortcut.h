// The spoken phrases that an extension offers for its intents.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intent.h"

namespace kivo::platform {

/// A phrase template: words followed by the application's name.
struct AppShortcutPhrase {
  /// Ends with the blank before the name: "Add expense in ".
  std::string_view words;

  /// Returns the phrase with `applicationName` at its end.
  [[nodiscard]] std::string said(std::string_view applicationName) const {
    return std::string(words).append(applicationName);
  }
};

/// An intent that is offered without set-up by the user.
struct AppShortcut {
  /// A new intent with empty parameters.
  std::unique_ptr<AppIntent> intent;
  std::vector<AppShortcutPhrase> phrases;
  LocalizedStringResource shortTitle;
  /// The name of one of the system's symbols.
  std::string_view systemImageName;
};

/// The colour of the shortcuts' tiles.
enum class ShortcutTileColor { standard };

}  // namespace kivo::platform
