// The result of an intent: a dialog for the user.
#pragma once

#include <string>

namespace kivo::platform {

/// One sentence, spoken or displayed, as UTF-8. May contain line breaks from the backend.
struct IntentDialog {
  std::string text;

  bool operator==(const IntentDialog&) const = default;
};

/// The result of a performed intent: a dialog and no value.
struct IntentResult {
  IntentDialog dialog;

  bool operator==(const IntentResult&) const = default;
};

}  // namespace kivo::platform
