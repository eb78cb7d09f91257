// Fills an intent's parameters from texts and, where a person sits at a terminal, by asking. Knows
// no intent.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/app_intents/app_intent.h"

namespace kivo::linux_platform {

/// Texts by the names of parameters.
using ParameterTexts = std::map<std::string, std::string>;

/// Fills the parameters of `intent` from `texts`, where "-" stands for all of standard input. Asks
/// for a missing one when standard input is a terminal, again and again until it fits. Blocks while
/// it reads. Yields what is wrong, in words without any value, or none when the intent can be
/// performed.
std::optional<std::string> fillParameters(platform::AppIntent& intent, const ParameterTexts& texts);

}  // namespace kivo::linux_platform
