#include "platform/app_intents/app_intent.h"

namespace kivo::platform {

AnyIntentParameter* parameterNamed(AppIntent& intent, std::string_view name) {
  for (AnyIntentParameter* const parameter : intent.parameters()) {
    if (parameter->settings().name == name) return parameter;
  }
  return nullptr;
}

}  // namespace kivo::platform
