// Fills an intent's parameters from texts and, on a terminal, by asking the user.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/app_intents/app_intent.h"

namespace kivo::linux_platform {

/// Texts by the parameters' names.
using ParameterTexts = std::map<std::string, std::string>;

/// Fills the parameters of `intent` from `texts`, where "-" means all of standard input. When
/// standard input is a terminal, asks for each missing one until it is valid. Blocks while it
/// reads. Returns what is wrong, without any value, or nullopt when the intent can be performed.
std::optional<std::string> fillParameters(platform::AppIntent& intent, const ParameterTexts& texts);

}  // namespace kivo::linux_platform
