#include "platform/app_intents/app_intents_extension.h"

namespace kivo::platform {

std::unique_ptr<AppIntent> AppIntentsExtension::makeIntent(std::string_view typeName) const {
  for (const auto& make : intents) {
    auto intent = make();
    if (intent->typeName() == typeName) return intent;
  }
  return nullptr;
}

}  // namespace kivo::platform
