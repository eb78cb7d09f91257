// The program kivo-phone, which does by hand what the phone's other apps do for the extension.
#include <cmath>
#include <iterator>
#include <string>
#include <utility>

#include "phone/account_commands.h"
#include "phone/phone_terminal.h"
#include "phone/queue_commands.h"
#include "phone/value_listing.h"
#include "phone/watch_commands.h"
#include "phone/widget_commands.h"
#include "platform/foundation/number_text.h"
#include "platform/foundation/user_defaults.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/command_line.h"
#include "store/shared_store.h"

namespace kivo {
namespace {

using linux_platform::Command;
using linux_platform::exitBadUsage;
using linux_platform::GivenParameters;
using platform::UserDefaults;
using Kind = linux_platform::CommandParameter::Kind;

// Returns the given value for `name`, made valid UTF-8.
std::string textOf(const GivenParameters& given, const char* name) {
  return platform::repairedUtf8(given.at(name));
}

int listStore(const GivenParameters&) {
  const auto defaults = UserDefaults::initWithSuiteName(appGroup);
  if (!defaults) return failWithoutStore();
  const auto controls =
      onTerminal() ? ValueListing::Controls::escaped : ValueListing::Controls::asTheyAre;
  return print(ValueListing::text(defaults->dictionaryRepresentation(), controls));
}

int getFromStore(const GivenParameters& given) {
  const auto defaults = UserDefaults::initWithSuiteName(appGroup);
  if (!defaults) return failWithoutStore();
  const auto values = defaults->dictionaryRepresentation();
  const std::string key = textOf(given, "KEY");
  const std::string quoted = '"' + linux_platform::escapedControls(key) + '"';
  const auto value = values.find(key);
  if (value == values.end()) {
    return fail("there is no key " + quoted + "; kivo-phone store list shows all keys");
  }
  const auto text = ValueListing::valueText(value->second);
  if (!text) return fail("the value of " + quoted + " is neither a text nor a number");
  return print(linux_platform::forStandardOutput(*text) + "\n");
}

int setInStore(const GivenParameters& given) {
  const std::string text = textOf(given, "VALUE");
  const auto number = platform::doubleFromText(text);
  const bool asFloat = given.contains("--float");
  if (asFloat && !(number && std::isfinite(*number))) {
    return fail("VALUE must be a finite number; nothing was stored", exitBadUsage);
  }
  auto defaults = UserDefaults::initWithSuiteName(appGroup);
  if (!defaults) return failWithoutStore();
  if (asFloat) {
    defaults->setDouble(textOf(given, "KEY"), *number);
  } else {
    defaults->setObject(textOf(given, "KEY"), text);
  }
  return defaults->synchronize() ? 0 : exitFailure;
}

linux_platform::CommandProgram phone() {
  linux_platform::CommandProgram program{
      .name = phoneProgramName,
      .purpose = "The rest of the phone, for trying and inspecting Kivo's intents.",
      .version = KIVO_VERSION,
      .commands =
          {
              {"store", "Show or change the values that app, widget and extension share", {}, {}},
              {"store list", "Show every value of the shared store", {}, listStore},
              {"store get", "Print the value of a key, alone", {{"KEY", "The key"}}, getFromStore},
              {"store set",
               "Store a text, or a number with --float",
               {{"KEY", "The key"},
                {"VALUE", "The value"},
                {"--float", "Store a number", Kind::flag}},
               setInStore},
          },
  };
  std::vector<Command> account = accountCommands();
  program.commands.insert(program.commands.begin(), std::make_move_iterator(account.begin()),
                          std::make_move_iterator(account.end()));
  for (Command& command : widgetCommands()) program.commands.push_back(std::move(command));
  for (Command& command : queueCommands()) program.commands.push_back(std::move(command));
  for (Command& command : watchCommands()) program.commands.push_back(std::move(command));
  return program;
}

}  // namespace
}  // namespace kivo

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  return kivo::linux_platform::runCommand(kivo::phone(), argc, argv);
}
