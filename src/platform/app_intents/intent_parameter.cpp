#include "platform/app_intents/intent_parameter.h"

#include "platform/foundation/utf8.h"

namespace kivo::platform {

bool IntentParameter<std::string>::setFromText(std::string text) {
  value_ = repairedUtf8(text);
  return true;
}

}  // namespace kivo::platform
