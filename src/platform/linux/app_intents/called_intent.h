// Resolves a D-Bus call to an intent with its parameters.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Values by the parameters' names; nullopt for a value that is neither a text nor a number.
using CalledValues = std::map<std::string, std::optional<platform::IntentValue>>;

/// Creates the intent `typeName` with `values`, ready to be performed. Does not convert values: a
/// text parameter takes a text, a number parameter a finite number within its range. Otherwise
/// throws BusRefusal with an error of `intents_interface` and one line that repeats nothing from
/// the caller, since that could be part of a message.
std::unique_ptr<platform::AppIntent> calledIntent(const platform::AppIntentsExtension& extension,
                                                  const std::string& typeName, CalledValues values);

}  // namespace kivo::linux_platform
