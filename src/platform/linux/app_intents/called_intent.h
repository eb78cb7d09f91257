// The intent that a call over the bus means, with its parameters. Performs none.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Values by the names of parameters; none for a value that is neither a text nor a number.
using CalledValues = std::map<std::string, std::optional<platform::IntentValue>>;

/// Why a call is refused. The words are one line and hold nothing that the caller has sent: it
/// could be part of a message.
struct CallRefusal {
  /// A name of `intents_interface`.
  const char* name;
  std::string words;
};

/// The intent of the type `typeName`, ready to be performed with `values`. There is no conversion:
/// a text parameter takes a text, a number parameter a finite number within its range.
std::variant<std::unique_ptr<platform::AppIntent>, CallRefusal> calledIntent(
    const platform::AppIntentsExtension& extension, const std::string& typeName,
    CalledValues values);

}  // namespace kivo::linux_platform
