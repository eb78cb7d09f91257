// The program kivo-phone, which does by hand what the phone's other apps do for the extension.
#include <cmath>
#include <iterator>
#include <string>
#include <utility>

#include "phone/account_commands.h"
#include "phone/phone_store.h"
#include "phone/queue_commands.h"
#include "phone/value_listing.h"
#include "phone/watch_commands.h"
#include "phone/widget_commands.h"
#include "platform/foundation/number_text.h"
#include "platform/foundation/user_defaults.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_line.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo {
namespace {

using linux_platform::BadUsage;
using linux_platform::Command;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::print;
using Kind = linux_platform::CommandParameter::Kind;

// Returns the given value for `name`, made valid UTF-8.
std::string textOf(const GivenParameters& given, const char* name) {
  return platform::repairedUtf8(given.at(name));
}

void listStore(const GivenParameters&) {
  const auto controls = linux_platform::onTerminal() ? ValueListing::Controls::escaped
                                                     : ValueListing::Controls::asTheyAre;
  print(ValueListing::text(openDefaults().dictionaryRepresentation(), controls));
}

void getFromStore(const GivenParameters& given) {
  const auto values = openDefaults().dictionaryRepresentation();
  const std::string key = textOf(given, "KEY");
  const auto value = values.find(key);
  if (value == values.end()) {
    throw CommandFailure("there is no key \"" + key + "\"; kivo-phone store list shows all keys");
  }
  const auto text = ValueListing::valueText(value->second);
  if (!text) {
    throw CommandFailure("the value of \"" + key + "\" is neither a text nor a number");
  }
  print(linux_platform::forStandardOutput(*text) + "\n");
}

void setInStore(const GivenParameters& given) {
  const std::string text = textOf(given, "VALUE");
  const auto number = platform::doubleFromText(text);
  const bool asFloat = given.contains("--float");
  if (asFloat && !(number && std::isfinite(*number))) {
    throw BadUsage("VALUE must be a finite number; nothing was stored");
  }
  auto defaults = openDefaults();
  if (asFloat) {
    defaults.setDouble(textOf(given, "KEY"), *number);
  } else {
    defaults.setObject(textOf(given, "KEY"), text);
  }
  if (!defaults.synchronize()) throw linux_platform::ReportedFailure();
}

linux_platform::CommandProgram phone() {
  linux_platform::CommandProgram program{
      .name = "kivo-phone",
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
