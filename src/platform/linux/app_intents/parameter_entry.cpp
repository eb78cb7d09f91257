#include "platform/linux/app_intents/parameter_entry.h"

#include <cstdio>
#include <iostream>
#include <iterator>

#include "platform/foundation/number_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/prompt.h"

namespace kivo::linux_platform {
namespace {

using platform::AnyIntentParameter;
using ValueType = AnyIntentParameter::ValueType;

std::string optionOf(const AnyIntentParameter& parameter) {
  return "--" + std::string(parameter.settings().name);
}

// A Linux terminal passes on at most this many bytes of a line (MAX_CANON, 255, is less than a bank
// message) and silently drops the rest.
constexpr std::size_t longestLine = 4095;

std::string question(const AnyIntentParameter& parameter) {
  const auto& settings = parameter.settings();
  if (settings.requestValueDialog) return settings.requestValueDialog->text;
  return std::string(settings.title.key) + " (" + std::string(settings.description.key) + "):";
}

// Describes the values that a number parameter accepts.
std::string whatFits(const AnyIntentParameter& parameter) {
  const auto& range = parameter.settings().inclusiveRange;
  if (!range) return "a number such as 12.5";
  return "a number from " + platform::doubleText(range->first) + " to " +
         platform::doubleText(range->second);
}

BadUsage missing(const AnyIntentParameter& parameter) {
  return BadUsage("missing parameter " + optionOf(parameter));
}

void ask(AnyIntentParameter& parameter) {
  Prompt prompt(std::cin);
  while (const auto line = prompt.askForLine(question(parameter))) {
    if (line->size() >= longestLine) {
      throw BadUsage(optionOf(parameter) + " is too long to be typed; give it on standard input");
    }
    if (parameter.setFromText(*line)) return;
    std::cerr << "That does not fit; it needs " << whatFits(parameter) << ".\n";
  }
  throw missing(parameter);
}

void take(AnyIntentParameter& parameter, std::string text) {
  if (text == "-") {
    if (parameter.valueType() != ValueType::text) {
      throw BadUsage(optionOf(parameter) + " cannot be read from standard input");
    }
    text = {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    // Part of a message could describe another payment than the whole.
    if (std::ferror(stdin) != 0) {
      throw BadUsage(optionOf(parameter) + " could not be read to its end");
    }
  }
  if (parameter.setFromText(std::move(text))) return;
  throw BadUsage(optionOf(parameter) + " needs " + whatFits(parameter));
}

}  // namespace

void fillParameters(platform::AppIntent& intent, const ParameterTexts& texts) {
  int fromStandardInput = 0;
  for (const auto& [name, text] : texts) {
    if (platform::parameterNamed(intent, name) == nullptr) {
      throw BadUsage("unknown parameter --" + name);
    }
    if (text == "-" && ++fromStandardInput > 1) {
      throw BadUsage("only one parameter can be read from standard input");
    }
  }

  for (AnyIntentParameter* const parameter : intent.parameters()) {
    const auto given = texts.find(std::string(parameter->settings().name));
    if (given != texts.end()) {
      take(*parameter, given->second);
    } else if (!parameter->hasValue()) {
      if (!inputIsTerminal()) throw missing(*parameter);
      ask(*parameter);
    }
  }
}

}  // namespace kivo::linux_platform
