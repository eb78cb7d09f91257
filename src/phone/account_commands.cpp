#include "phone/account_commands.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "extraction/sms_extraction_client.h"
#include "feedback/amount_formatter.h"
#include "feedback/widget_stats.h"
#include "phone/backend_check.h"
#include "phone/ledger_month.h"
#include "phone/local_ledger.h"
#include "phone/phone_store.h"
#include "phone/waiting_texts.h"
#include "phone/watcher_status.h"
#include "phone/widget_view.h"
#include "platform/foundation/date.h"
#include "platform/foundation/number_text.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/bus/session_bus.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/locale/currency_codes.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/text_columns.h"
#include "platform/linux/user_notifications/bus_user_notification_center.h"
#include "platform/linux/widget_kit/bus_widget_center.h"
#include "queue/pending_sms_queue.h"

namespace kivo {
namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::forStandardOutput;
using linux_platform::GivenParameters;
using linux_platform::print;
using platform::UNAuthorizationStatus;
using Kind = linux_platform::CommandParameter::Kind;

constexpr std::array<std::pair<const char*, UNAuthorizationStatus>, 5> statuses{{
    {"authorized", UNAuthorizationStatus::authorized},
    {"denied", UNAuthorizationStatus::denied},
    {"not-determined", UNAuthorizationStatus::notDetermined},
    {"provisional", UNAuthorizationStatus::provisional},
    {"ephemeral", UNAuthorizationStatus::ephemeral},
}};

std::vector<std::string> statusWords() {
  std::vector<std::string> words;
  for (const auto& [word, status] : statuses) words.emplace_back(word);
  return words;
}

constexpr const char* noCenter = "the notification center does not answer";

// Returns a warning about the stored currency; nullopt when it is known.
std::optional<std::string> currencyWarning(const SharedStore& store) {
  const std::string code = AmountFormatter::currencyCode(store);
  if (linux_platform::isKnownCurrency(code)) return std::nullopt;
  return '"' + code + "\" is no currency code of ISO 4217, such as EGP; amounts may read wrong.";
}

// Returns the given value for `name`, made valid UTF-8.
std::string textOf(const GivenParameters& given, const char* name) {
  return platform::repairedUtf8(given.at(name));
}

// Returns `base` as a person reads it. What follows "/p/" is the secret by which a server for
// several people knows this device: whoever looks over the shoulder must not see it.
std::string shownBase(const std::string& base) {
  if (LocalLedger::url() == base) return "the ledger on this machine";
  constexpr std::string_view people = "/p/";
  const std::size_t at = base.find(people);
  return at == std::string::npos ? base : base.substr(0, at + people.size()) + "…";
}

// Checks the backend at `base`. Starts the socket of the ledger first where that helps.
BackendFindings findStarted(const std::string& base) {
  BackendFindings findings = BackendCheck::find(base);
  if (!findings.ledgerIsToStart) return findings;
  LocalLedger::startSocket();
  return BackendCheck::find(base);
}

void reloadWidgets() {
  linux_platform::SessionBus bus;
  linux_platform::BusWidgetCenter(bus).reloadAllTimelines();
}

// The user and the backend of a sign-in.
struct Account {
  std::string userId;
  std::string base;
};

Account localAccount(const GivenParameters& given) {
  if (given.contains("--url")) throw BadUsage("give either --local or --url");
  const auto url = LocalLedger::url();
  if (!url) {
    throw CommandFailure(
        "XDG_RUNTIME_DIR is not set, so that there is no place for the socket of kivo-ledger");
  }
  return {.userId = given.contains("--user-id") ? textOf(given, "--user-id") : "local",
          .base = *url};
}

// The URL, which is read from standard input for "-": what is on a command line can be seen by
// other users of the machine.
std::string givenBase(const GivenParameters& given) {
  std::string base = textOf(given, "--url");
  if (base != "-") return base;
  return linux_platform::Prompt(std::cin).ask("The backend's base URL:").value_or("");
}

Account remoteAccount(const GivenParameters& given) {
  if (!given.contains("--url")) {
    throw BadUsage("--url is missing, or --local (see kivo-phone sign-in --help)");
  }
  if (!given.contains("--user-id")) {
    throw BadUsage("--user-id is missing (see kivo-phone sign-in --help)");
  }
  return {.userId = textOf(given, "--user-id"), .base = givenBase(given)};
}

Account accountFrom(const GivenParameters& given) {
  Account account = given.contains("--local") ? localAccount(given) : remoteAccount(given);
  if (SMSExtractionClient::endpoint(account.base)) return account;
  throw BadUsage("invalid --url \"" + shownBase(account.base) +
                 "\": this is no URL; nothing was stored");
}

bool areOneCurrency(std::string_view one, std::string_view other) {
  constexpr auto small = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  };
  return std::ranges::equal(one, other, {}, small, small);
}

// Writes the currency. Returns a line about the widget's totals when they begin at zero, since sums
// of two currencies cannot be added.
std::string writeCurrency(SharedStore& store, const std::string& currency) {
  const std::string before = AmountFormatter::currencyCode(store);
  store.writeText(StoreKeys::currency, currency);
  if (areOneCurrency(before, currency) || !WidgetStats::anyIsCounted(store)) return "";
  WidgetStats::restart(store);
  return forStandardOutput("The widget's totals were in " + before + "; they begin at zero in " +
                           currency + ".") +
         "\n";
}

void printFindings(const SharedStore& store, const std::string& base) {
  std::string lines;
  for (const std::string& sentence : BackendCheck::sentences(findStarted(base))) {
    lines += forStandardOutput(sentence) + "\n";
  }
  if (const auto warning = currencyWarning(store)) lines += forStandardOutput(*warning) + "\n";
  print(lines);
}

void save(SharedStore& store) {
  if (!store.synchronize()) throw linux_platform::ReportedFailure();
}

void signIn(const GivenParameters& given) {
  const auto [userId, base] = accountFrom(given);
  SharedStore store = openStore();
  store.writeText(StoreKeys::userId, userId);
  store.writeText(StoreKeys::supabaseUrl, base);
  std::string restarted;
  if (given.contains("--currency")) restarted = writeCurrency(store, textOf(given, "--currency"));
  save(store);
  if (!restarted.empty()) reloadWidgets();

  if (userId.empty() || base.empty()) {
    return print("Stored. An empty user identifier or URL counts as signed out.\n" + restarted);
  }
  // Printed before the check, which takes up to its timeout when there is no answer.
  print("Signed in at " + forStandardOutput(shownBase(base)) + "\n" + restarted);
  printFindings(store, base);
}

void signOut(const GivenParameters&) {
  SharedStore store = openStore();
  store.writeText(StoreKeys::userId, "");  // a key is never removed
  store.writeText(StoreKeys::supabaseUrl, "");
  save(store);
  print("Signed out.\n");
}

std::optional<std::string> permissionWord() {
  const auto stored = linux_platform::authorizationStatus(extensionBundle);
  for (const auto& [word, status] : statuses) {
    if (stored == status) return word;
  }
  return std::nullopt;
}

void showPermission() {
  const auto word = permissionWord();
  if (!word) throw CommandFailure(noCenter);
  print("Notifications: " + *word + "\n");
}

void notifications(const GivenParameters& given) {
  const auto wanted = given.find("STATUS");
  if (wanted == given.end()) return showPermission();
  for (const auto& [word, status] : statuses) {
    if (wanted->second != word) continue;
    if (!linux_platform::setAuthorizationStatus(extensionBundle, status)) {
      throw CommandFailure(noCenter);
    }
    return showPermission();
  }
  throw BadUsage("STATUS is one of authorized, denied, not-determined, provisional, ephemeral");
}

// Formats one line of the status.
std::string line(std::string_view name, const std::string& what) {
  constexpr std::size_t nameWidth = 15;
  return linux_platform::paddedTo(nameWidth, name) + forStandardOutput(what) + "\n";
}

std::string backendLines(const SharedStore& store) {
  const auto base = store.readNonEmptyText(StoreKeys::supabaseUrl);
  if (!base || !store.readNonEmptyText(StoreKeys::userId)) {
    return line("Signed in", "no; kivo-phone sign-in does it");
  }
  std::string lines = line("Signed in", "at " + shownBase(*base));
  if (!SMSExtractionClient::endpoint(*base)) {
    return lines + line("Backend", "the stored address is no URL; sign in again");
  }
  std::string_view name = "Backend";
  for (const std::string& sentence : BackendCheck::sentences(BackendCheck::find(*base))) {
    lines += line(std::exchange(name, ""), sentence);
  }
  return lines;
}

// The figures of the ledger on this machine, beside the running total of the widget.
std::string ledgerLines(const SharedStore& store) {
  if (!LocalLedger::isSignedIn(store)) return "";
  const auto month = LedgerMonth::ask();
  if (!month) return line("This month", "unknown; kivo-ledger summary says why");
  std::string review = platform::integerText(month->toReview);
  if (month->toReview > 0) review += "; kivo-ledger review shows what needs a look";
  std::string expenses = month->expenses;
  if (!month->leftOut.empty()) {
    constexpr std::size_t idColumns = 40;
    expenses += "; left out of sums: " + linux_platform::cutTo(idColumns, month->leftOut);
  }
  return line("This month", expenses) +
         line("Running total", WidgetView::read(store).runningTotal) + line("To review", review);
}

void status(const GivenParameters&) {
  const SharedStore store = openStore();
  const auto items = PendingSmsQueue::load(store);
  std::string lines = backendLines(store);
  lines += line("Currency", AmountFormatter::currencyCode(store));
  if (const auto warning = currencyWarning(store)) lines += line("", *warning);
  lines += ledgerLines(store);
  lines += line("Notifications", permissionWord().value_or(noCenter));
  lines += line("Senders", WatcherStatus::sentence());
  lines += line("Waiting", WaitingTexts::sentence(items, linux_platform::lastExchange(),
                                                  platform::Date::now()));
  if (!items.empty()) lines += line("", "kivo-phone queue send sends them now");
  print(lines);
}

}  // namespace

std::vector<linux_platform::Command> accountCommands() {
  return {
      {"status", "Show where Kivo is signed in, what it can reach and what waits", {}, status},
      {"sign-in",
       "Store who the person is and where the backend is",
       {{"--user-id", "The user identifier; \"local\" when not given with --local", Kind::optional},
        {"--url", "The backend's base URL; - reads it from standard input", Kind::optional},
        {"--local", "Use the backend on this machine, kivo-ledger", Kind::flag},
        {"--currency", "The currency code; kept when not given", Kind::optional}},
       signIn},
      {"sign-out", "Forget who the person is", {}, signOut},
      {"notifications",
       "Show or decide whether Kivo may notify",
       {{.name = "STATUS",
         .meaning = "authorized, denied, not-determined, provisional or ephemeral",
         .kind = Kind::optional,
         .values = statusWords}},
       notifications},
  };
}

}  // namespace kivo
