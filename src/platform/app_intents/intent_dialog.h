// What an intent answers to the person. Carries no other value.
#pragma once

#include <string>

namespace kivo::platform {

/// One sentence, spoken or displayed. UTF-8; may hold line breaks that came from the backend.
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
