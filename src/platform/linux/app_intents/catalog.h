// Writes the declaration of an extension as text and as JSON.
#pragma once

#include <string>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Returns intents, parameters and phrases as lines for a person, without a final line break.
std::string catalogText(const platform::AppIntentsExtension& extension);

/// Returns the whole declaration, defaults included, as one JSON object on one line.
/// docs/catalog.schema.json is its schema.
std::string catalogJSON(const platform::AppIntentsExtension& extension);

}  // namespace kivo::linux_platform
