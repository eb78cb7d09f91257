#include "platform/linux/app_intents/called_intent.h"

#include <utility>

#include "platform/linux/bus/bus_refusal.h"
#include "platform/linux/bus/intents_interface.h"

namespace kivo::linux_platform {
namespace {

using platform::AnyIntentParameter;
using platform::AppIntent;
using ValueType = AnyIntentParameter::ValueType;

std::string nameOf(const AnyIntentParameter& parameter) {
  return std::string(parameter.settings().name);
}

std::string intentNames(const platform::AppIntentsExtension& extension) {
  std::string names;
  for (const auto& make : extension.intents) {
    names += (names.empty() ? "" : ", ") + std::string(make()->typeName());
  }
  return names;
}

std::string parameterNames(AppIntent& intent) {
  std::string names;
  for (const AnyIntentParameter* const parameter : intent.parameters()) {
    names += (names.empty() ? "" : ", ") + nameOf(*parameter);
  }
  return names;
}

void fill(AppIntent& intent, CalledValues values) {
  for (const auto& [name, value] : values) {
    if (parameterNamed(intent, name) == nullptr) {
      throw BusRefusal(intents_interface::unknownParameter,
                       "unknown parameter; the parameters are: " + parameterNames(intent));
    }
  }
  for (auto& [name, value] : values) {
    AnyIntentParameter& parameter = *parameterNamed(intent, name);
    if (value && parameter.set(std::move(*value))) continue;
    const bool text = parameter.valueType() == ValueType::text;
    throw BusRefusal(intents_interface::invalidParameter,
                     name + (text ? " must be a text (s)" : " must be a finite number (d)"));
  }
  for (const AnyIntentParameter* const parameter : intent.parameters()) {
    if (parameter->hasValue()) continue;
    throw BusRefusal(intents_interface::missingParameter, nameOf(*parameter) + " is missing");
  }
}

}  // namespace

std::unique_ptr<AppIntent> calledIntent(const platform::AppIntentsExtension& extension,
                                        const std::string& typeName, CalledValues values) {
  auto intent = extension.makeIntent(typeName);
  if (!intent) {
    throw BusRefusal(intents_interface::unknownIntent,
                     "unknown intent; the intents are: " + intentNames(extension));
  }
  fill(*intent, std::move(values));
  return intent;
}

}  // namespace kivo::linux_platform
