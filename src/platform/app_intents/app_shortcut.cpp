#include "platform/app_intents/app_shortcut.h"

namespace kivo::platform {

std::string AppShortcutPhrase::said(std::string_view applicationName) const {
  return std::string(words) + std::string(applicationName);
}

}  // namespace kivo::platform
