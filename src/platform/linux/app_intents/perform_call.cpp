#include "platform/linux/app_intents/perform_call.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

using platform::AnyIntentParameter;
using platform::AppIntent;

std::string option(std::string_view parameterName) { return "--" + std::string(parameterName); }

// A declared intent as the command line offers it. Options fill `given` by the parameters' names.
struct OfferedIntent {
  std::unique_ptr<AppIntent> intent;
  std::map<std::string_view, std::optional<std::string>> given;
  CLI::App* command = nullptr;
};

std::vector<OfferedIntent> offer(const platform::AppIntentsExtension& extension,
                                 CLI::App& perform) {
  std::vector<OfferedIntent> offered;
  for (const auto& make : extension.intents) {
    OfferedIntent entry{.intent = make(), .given = {}};
    entry.command = perform.add_subcommand(std::string(entry.intent->typeName()),
                                           std::string(entry.intent->title()));
    for (const AnyIntentParameter* const parameter : entry.intent->parameters()) {
      // The map's nodes stay where they are, so CLI11 may keep the reference.
      entry.command
          ->add_option(option(parameter->name()), entry.given[parameter->name()],
                       std::string(parameter->description()) + " (\"-\" reads standard input)")
          ->option_text("TEXT");
    }
    offered.push_back(std::move(entry));
  }
  return offered;
}

EarlyEnd usage(const std::string& what) {
  return {.exitStatus = exitUsage, .error = "kivo-intents: " + what + " (see kivo-intents --help)"};
}

std::string allStandardInput() {
  return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
}

std::optional<std::string> askFor(const AnyIntentParameter& parameter) {
  std::cerr << parameter.title() << ": " << std::flush;
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

// Fills the parameters of the chosen intent, or tells why that cannot be done.
std::optional<EarlyEnd> fill(OfferedIntent& chosen) {
  bool inputIsTaken = false;
  for (const auto& [name, text] : chosen.given) {
    if (text == "-" && std::exchange(inputIsTaken, true)) {
      return usage("only one parameter can be read from standard input");
    }
  }
  for (AnyIntentParameter* const parameter : chosen.intent->parameters()) {
    std::optional<std::string>& text = chosen.given[parameter->name()];
    if (text == "-") text = allStandardInput();
    if (!text && isatty(STDIN_FILENO) == 1) text = askFor(*parameter);
    if (!text) return usage("missing parameter " + option(parameter->name()));
    if (!parameter->setFromText(std::move(*text))) {
      return usage("parameter " + option(parameter->name()) + " does not fit");
    }
  }
  return std::nullopt;
}

bool isOptionName(const std::string& argument) {
  return argument.size() > 2 && argument.starts_with("--") &&
         std::all_of(argument.begin() + 2, argument.end(),
                     [](char letter) { return std::isalpha(static_cast<unsigned char>(letter)); });
}

// What was left over may be part of a message that somebody forgot to quote, so it is named only
// when it is an option's name.
EarlyEnd describeLeftOver(const std::vector<std::string>& leftOver) {
  const auto name = std::find_if(leftOver.begin(), leftOver.end(), isOptionName);
  if (name != leftOver.end()) return usage("unknown parameter " + *name);
  return usage("there is an argument too many; a text with blanks needs quotes");
}

// CLI11's own words may quote what was given, and that may be a message.
EarlyEnd describe(const CLI::ParseError& error, const CLI::App& app, const CLI::App& perform) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    std::ostringstream text;
    app.exit(error, text, text);
    return {.exitStatus = 0, .output = text.str()};
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    return usage("a parameter has no value or is given twice");
  }
  return usage(perform.parsed() ? "unknown intent, or none named"
                                : "unknown command, or none named");
}

}  // namespace

std::variant<PerformCall, EarlyEnd> readCommandLine(
    int argc, char** argv, const platform::AppIntentsExtension& extension) {
  CLI::App app("Records money movements with Kivo without opening the app.", "kivo-intents");
  app.set_version_flag("--version", "kivo-intents " KIVO_VERSION);
  app.require_subcommand(1);
  CLI::App& perform = *app.add_subcommand("perform", "Performs an intent and answers its dialog.");
  perform.require_subcommand(1);
  bool json = false;
  perform.add_flag("--json", json, "Answer one JSON object, {\"dialog\": ...}");
  perform.fallthrough();
  app.allow_extras();
  perform.allow_extras();
  std::vector<OfferedIntent> offered = offer(extension, perform);
  for (const OfferedIntent& entry : offered) entry.command->fallthrough()->allow_extras();

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return describe(error, app, perform);
  }
  if (const auto leftOver = app.remaining(true); !leftOver.empty()) {
    return describeLeftOver(leftOver);
  }

  for (OfferedIntent& entry : offered) {
    if (!entry.command->parsed()) continue;
    if (auto end = fill(entry)) return std::move(*end);
    return PerformCall{.intent = std::move(entry.intent),
                       .form = json ? DialogForm::json : DialogForm::text};
  }
  return usage("unknown intent, or none named");
}

}  // namespace kivo::linux_platform
