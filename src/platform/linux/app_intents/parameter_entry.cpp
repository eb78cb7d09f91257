#include "platform/linux/app_intents/parameter_entry.h"

#include <cstdio>
#include <iostream>
#include <iterator>

#include <unistd.h>

#include "platform/foundation/number_text.h"

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
  if (settings.requestValueDialog) return settings.requestValueDialog->text + " ";
  return std::string(settings.title.key) + " (" + std::string(settings.description.key) + "): ";
}

// Describes the values that a number parameter accepts.
std::string whatFits(const AnyIntentParameter& parameter) {
  const auto& range = parameter.settings().inclusiveRange;
  if (!range) return "a number such as 12.5";
  return "a number from " + platform::doubleText(range->first) + " to " +
         platform::doubleText(range->second);
}

std::optional<std::string> ask(AnyIntentParameter& parameter) {
  std::string line;
  while (std::cerr << question(parameter) << std::flush && std::getline(std::cin, line)) {
    if (line.size() >= longestLine) {
      return optionOf(parameter) + " is too long to be typed; give it on standard input";
    }
    if (parameter.setFromText(line)) return std::nullopt;
    std::cerr << "That does not fit; it needs " << whatFits(parameter) << ".\n";
  }
  std::cerr << "\n";  // ends the question's line
  return "missing parameter " + optionOf(parameter);
}

std::optional<std::string> take(AnyIntentParameter& parameter, std::string text) {
  if (text == "-") {
    if (parameter.valueType() != ValueType::text) {
      return optionOf(parameter) + " cannot be read from standard input";
    }
    text = {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    // Part of a message could describe another payment than the whole.
    if (std::ferror(stdin) != 0) return optionOf(parameter) + " could not be read to its end";
  }
  if (parameter.setFromText(std::move(text))) return std::nullopt;
  return optionOf(parameter) + " needs " + whatFits(parameter);
}

}  // namespace

std::optional<std::string> fillParameters(platform::AppIntent& intent,
                                          const ParameterTexts& texts) {
  int fromStandardInput = 0;
  for (const auto& [name, text] : texts) {
    if (platform::parameterNamed(intent, name) == nullptr) return "unknown parameter --" + name;
    if (text == "-" && ++fromStandardInput > 1) {
      return "only one parameter can be read from standard input";
    }
  }

  for (AnyIntentParameter* const parameter : intent.parameters()) {
    const auto given = texts.find(std::string(parameter->settings().name));
    std::optional<std::string> complaint;
    if (given != texts.end()) {
      complaint = take(*parameter, given->second);
    } else if (!parameter->hasValue()) {
      complaint =
          isatty(STDIN_FILENO) == 1 ? ask(*parameter) : "missing parameter " + optionOf(*parameter);
    }
    if (complaint) return complaint;
  }
  return std::nullopt;
}

}  // namespace kivo::linux_platform
