// What an extension offers, written out. Performs nothing.
#pragma once

#include <string>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Intents, parameters and phrases as a person reads them: some lines, without a break at the end.
std::string catalogText(const platform::AppIntentsExtension& extension);

/// All that is declared, defaults included, as one JSON object on one line;
/// docs/catalog.schema.json describes it.
std::string catalogJSON(const platform::AppIntentsExtension& extension);

}  // namespace kivo::linux_platform
