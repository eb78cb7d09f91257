// Resolves a D-Bus call to an intent with its parameters.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Values by the parameters' names; nullopt for a value that is neither a text nor a number.
using CalledValues = std::map<std::string, std::optional<platform::IntentValue>>;

/// The refusal of a call. `words` is one line and repeats nothing from the caller, since that could
/// be part of a message.
struct CallRefusal {
  /// A D-Bus error name from `intents_interface`.
  const char* name;
  std::string words;
};

/// Creates the intent `typeName` with `values`, ready to be performed, or returns why the call is
/// refused. Does not convert values: a text parameter takes a text, a number parameter a finite
/// number within its range.
std::variant<std::unique_ptr<platform::AppIntent>, CallRefusal> calledIntent(
    const platform::AppIntentsExtension& extension, const std::string& typeName,
    CalledValues values);

}  // namespace kivo::linux_platform
