// Fills an intent's parameters from texts and, on a terminal, by asking the user.
#pragma once

#include <map>
#include <string>

#include "platform/app_intents/app_intent.h"

namespace kivo::linux_platform {

/// Texts by the parameters' names.
using ParameterTexts = std::map<std::string, std::string>;

/// Fills the parameters of `intent` from `texts`, where "-" means all of standard input. When
/// standard input is a terminal, asks for each missing one until it is valid. Blocks while it
/// reads. Throws BadUsage, without any value in its sentence, when a text does not fit or a
/// parameter is missing.
void fillParameters(platform::AppIntent& intent, const ParameterTexts& texts);

}  // namespace kivo::linux_platform
