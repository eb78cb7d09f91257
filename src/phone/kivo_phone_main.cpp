// The program kivo-phone: what the rest of the phone does for the extension, by hand.
#include <cmath>
#include <string>
#include <utility>

#include "phone/phone_terminal.h"
#include "phone/queue_commands.h"
#include "phone/sms_watcher/watch_commands.h"
#include "phone/value_listing.h"
#include "phone/widget_commands.h"
#include "platform/foundation/number_text.h"
#include "platform/foundation/url.h"
#include "platform/foundation/user_defaults.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/process/command_line.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/process/terminal_text.h"
#include "platform/linux/user_notifications/notification_permission.h"
#include "store/shared_store.h"

namespace kivo {
namespace {

using linux_platform::Command;
using linux_platform::exitBadUsage;
using linux_platform::GivenParameters;
using platform::UNAuthorizationStatus;
using platform::UserDefaults;
using Kind = linux_platform::CommandParameter::Kind;

// A value as it is stored: as it was given, made valid UTF-8.
std::string textOf(const GivenParameters& given, const char* name) {
  return platform::repairedUtf8(given.at(name));
}

int signIn(const GivenParameters& given) {
  const std::string userId = textOf(given, "--user-id");
  const std::string base = textOf(given, "--url");
  const auto endpoint = platform::URL::parse(base + "/functions/v1/sms-extraction");
  if (!endpoint) return fail("--url is no URL; nothing was stored", exitBadUsage);

  auto store = SharedStore::open(appGroup);
  if (!store) return failWithoutStore();
  store->writeText(StoreKeys::userId, userId);
  store->writeText(StoreKeys::supabaseUrl, base);
  if (given.contains("--currency")) {
    store->writeText(StoreKeys::currency, textOf(given, "--currency"));
  }
  if (!store->synchronize()) return exitFailure;

  if (userId.empty() || base.empty()) {
    return print("Stored. An empty user identifier or URL counts as signed out.\n");
  }
  if (endpoint->scheme != "http" && endpoint->scheme != "https") {
    return print("Signed in. Only http and https are spoken, so every text will wait offline.\n");
  }
  return print("Signed in.\n");
}

int signOut(const GivenParameters&) {
  auto store = SharedStore::open(appGroup);
  if (!store) return failWithoutStore();
  store->writeText(StoreKeys::userId, "");  // a key is never removed
  store->writeText(StoreKeys::supabaseUrl, "");
  return store->synchronize() ? print("Signed out.\n") : exitFailure;
}

const std::map<std::string, UNAuthorizationStatus>& notificationStatuses() {
  static const std::map<std::string, UNAuthorizationStatus> statuses{
      {"not-determined", UNAuthorizationStatus::notDetermined},
      {"denied", UNAuthorizationStatus::denied},
      {"authorized", UNAuthorizationStatus::authorized},
      {"provisional", UNAuthorizationStatus::provisional},
      {"ephemeral", UNAuthorizationStatus::ephemeral},
  };
  return statuses;
}

std::vector<std::string> notificationStatusNames() {
  std::vector<std::string> names;
  for (const auto& [name, status] : notificationStatuses()) names.push_back(name);
  return names;
}

int setNotifications(const GivenParameters& given) {
  const auto& statuses = notificationStatuses();
  const auto status = statuses.find(given.at("STATUS"));
  if (status == statuses.end()) {
    return fail("STATUS is one of authorized, denied, not-determined, provisional, ephemeral",
                exitBadUsage);
  }
  if (!linux_platform::setAuthorizationStatus(extensionBundle, status->second)) {
    return fail("the notification center does not answer");
  }
  return print("Notifications: " + status->first + "\n");
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
  const auto value = values.find(textOf(given, "KEY"));
  if (value == values.end()) return fail("nothing is stored under this key");
  const auto text = ValueListing::valueText(value->second);
  if (!text) return fail("neither text nor number is stored under this key");
  return print(linux_platform::forStandardOutput(*text) + "\n");
}

int setInStore(const GivenParameters& given) {
  const std::string text = textOf(given, "VALUE");
  const auto number = platform::doubleFromText(text);
  const bool asFloat = given.contains("--float");
  if (asFloat && !(number && std::isfinite(*number))) {
    return fail("VALUE is no finite number; nothing was stored", exitBadUsage);
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
              {"sign-in",
               "Store who the person is and where the backend is",
               {{"--user-id", "The user identifier"},
                {"--url", "The backend's base URL"},
                {"--currency", "The currency code; kept when not given", Kind::optional}},
               signIn},
              {"sign-out", "Forget who the person is", {}, signOut},
              {"notifications",
               "Decide whether Kivo may notify",
               {{.name = "STATUS",
                 .meaning = "authorized, denied, not-determined, provisional or ephemeral",
                 .values = notificationStatusNames}},
               setNotifications},
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
