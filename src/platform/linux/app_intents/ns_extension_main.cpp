// The extension runtime: the command line of kivo-intents.
#include <algorithm>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/app_intents/app_extension.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/number_formatter.h"
#include "platform/foundation/standard_output.h"
#include "platform/linux/app_intents/catalog.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/app_intents/intents_service.h"
#include "platform/linux/app_intents/parameter_entry.h"
#include "platform/linux/app_intents/spoken_phrases.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::linux_platform {
namespace {

using platform::AppIntent;
using platform::AppIntentsExtension;
using platform::IntentDialog;
using Kind = CommandParameter::Kind;

constexpr const char* programName = "kivo-intents";
constexpr const char* jsonFlag = "--json";

// The first amount that a process formats loads the locale's tables, which takes ten times as long
// as formatting. Formatting any amount loads them.
void readTablesForAmounts() {
  static_cast<void>(platform::NumberFormatter{.currencyCode = ""}.string(0));
}

void print(const IntentDialog& dialog, bool asJSON) {
  if (asJSON) {
    platform::JSONEncoder object;
    object.encodeString("dialog", dialog.text);
    platform::printLine(jsonForStandardOutput(object.text()));
  } else {
    platform::printLine(sentenceForStandardOutput(dialog.text));
  }
}

// From now on these signals stay pending, so that the process ends with its own status: the dialog
// was printed.
void blockTerminations() {
  sigset_t terminations;
  sigemptyset(&terminations);
  sigaddset(&terminations, SIGTERM);
  sigaddset(&terminations, SIGINT);
  pthread_sigmask(SIG_BLOCK, &terminations, nullptr);
}

// Performs the intent on a worker and prints its dialog.
void performAndAnswer(const AppIntentsExtension& extension, AppIntent& intent, bool asJSON) {
  // The bus thread has spare time until the run makes its first call.
  InstalledPlatform installed(extension.bundleIdentifier, readTablesForAmounts);
  std::optional<TaskExecutor> executor;
  try {
    executor.emplace(1);
  } catch (const Failure&) {
    throw CommandFailure("the system has no thread left to run on; nothing was sent or stored");
  }
  IntentDialog dialog;
  executor->perform(installed.perform(intent, dialog));
  print(dialog, asJSON);
  blockTerminations();
}

// The texts for the intent's parameters: all given options except our own.
ParameterTexts parameterTexts(const GivenParameters& given) {
  ParameterTexts texts;
  for (const auto& [option, text] : given) {
    if (option.starts_with("--") && option != jsonFlag) texts[option.substr(2)] = text;
  }
  return texts;
}

void fillAndPerform(const AppIntentsExtension& extension, AppIntent& intent,
                    const GivenParameters& given) {
  fillParameters(intent, parameterTexts(given));
  performAndAnswer(extension, intent, given.contains(jsonFlag));
}

void say(const AppIntentsExtension& extension, const GivenParameters& given) {
  const auto intent = intentSpokenOf(extension, given.at("SENTENCE"));
  if (intent) return fillAndPerform(extension, *intent, given);

  std::string complaint = "unknown phrase; the phrases are:";
  for (const std::string& phrase : spokenPhrases(extension)) complaint += "\n  " + phrase;
  complain(programName, complaint);  // several lines
  throw ReportedFailure{exitBadUsage};
}

std::vector<CommandParameter> offeredParameters(AppIntent& intent) {
  std::vector<CommandParameter> offered;
  for (const platform::AnyIntentParameter* const parameter : intent.parameters()) {
    const auto& settings = parameter->settings();
    CommandParameter one{"--" + std::string(settings.name), std::string(settings.description.key),
                         Kind::optional};
    if (parameter->valueType() == platform::AnyIntentParameter::ValueType::text) {
      one.meaning += " (\"-\" reads standard input)";
      one.values = [] { return std::vector<std::string>{"-"}; };
    }
    offered.push_back(std::move(one));
  }
  return offered;
}

Command performCommand(const AppIntentsExtension& extension, AppIntent& declared) {
  const std::string type(declared.typeName());
  Command command{.name = "perform " + type,
                  .purpose = std::string(declared.title().key),
                  .parameters = offeredParameters(declared),
                  .run = [&extension, type](const GivenParameters& given) {
                    fillAndPerform(extension, *extension.makeIntent(type), given);
                  }};
  command.parameters.push_back({jsonFlag, "Answer as one JSON object", Kind::flag});
  return command;
}

// Several intents may have a parameter of the same name; the sentence decides which intent is
// meant.
bool offers(const Command& command, const std::string& name) {
  return std::any_of(command.parameters.begin(), command.parameters.end(),
                     [&name](const CommandParameter& one) { return one.name == name; });
}

Command sayCommand(const AppIntentsExtension& extension) {
  Command command{.name = "say",
                  .purpose = "Perform the intent that a phrase means",
                  .parameters = {{.name = "SENTENCE",
                                  .meaning = "The phrase, such as \"Log expense to Kivo\"",
                                  .values = [&extension] { return spokenPhrases(extension); }}},
                  .run = [&extension](const GivenParameters& given) { say(extension, given); }};
  for (const auto& make : extension.intents) {
    for (CommandParameter& parameter : offeredParameters(*make())) {
      if (!offers(command, parameter.name)) command.parameters.push_back(std::move(parameter));
    }
  }
  command.parameters.push_back({jsonFlag, "Answer as one JSON object", Kind::flag});
  return command;
}

Command catalogCommand(const AppIntentsExtension& extension) {
  return {.name = "catalog",
          .purpose = "Print intents, parameters and phrases",
          .parameters = {{jsonFlag, "Print one JSON object", Kind::flag}},
          .run = [&extension](const GivenParameters& given) {
            const bool asJSON = given.contains(jsonFlag);
            platform::printLine(asJSON ? catalogJSON(extension) : catalogText(extension));
          }};
}

Command serveCommand(const AppIntentsExtension& extension) {
  return {.name = "serve",
          .purpose = "Answer calls on the session bus",
          .parameters = {},
          .run = [&extension](const GivenParameters&) { serveIntents(extension); }};
}

CommandProgram programOf(const AppIntentsExtension& extension) {
  CommandProgram program{.name = programName,
                         .purpose = "Records money movements with Kivo without opening the app.",
                         .version = KIVO_VERSION,
                         .commands = {{.name = "perform",
                                       .purpose = "Perform an intent and answer its dialog",
                                       .parameters = {},
                                       .run = nullptr}}};
  for (const auto& make : extension.intents) {
    program.commands.push_back(performCommand(extension, *make()));
  }
  program.commands.push_back(catalogCommand(extension));
  program.commands.push_back(sayCommand(extension));
  program.commands.push_back(serveCommand(extension));
  return program;
}

}  // namespace
}  // namespace kivo::linux_platform

namespace kivo::platform {

int NSExtensionMain(int argc, char** argv, const AppIntentsExtension& extension) {
  linux_platform::startProcess();
  return linux_platform::runCommand(linux_platform::programOf(extension), argc, argv);
}

}  // namespace kivo::platform
