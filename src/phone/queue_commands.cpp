#include "phone/queue_commands.h"

#include <charconv>
#include <cstddef>
#include <iostream>
#include <optional>
#include <string>

#include <unistd.h>

#include "extraction/sms_extraction_client.h"
#include "phone/backend_check.h"
#include "phone/phone_terminal.h"
#include "phone/queue_listing.h"
#include "phone/queue_removal.h"
#include "phone/queue_sending.h"
#include "phone/waiting_texts.h"
#include "platform/foundation/date.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/user_defaults.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/foundation/safe_text.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"

namespace kivo {
namespace {

using linux_platform::exitBadUsage;
using linux_platform::GivenParameters;
using Controls = QueueListing::Controls;
using Items = std::vector<PendingSmsItem>;
using Kind = linux_platform::CommandParameter::Kind;

// Whether anything is stored under `key`, text or not.
bool isStored(StoreKey key) {
  const auto defaults = platform::UserDefaults::initWithSuiteName(appGroup);
  return defaults && defaults->dictionaryRepresentation().contains(std::string(key.name));
}

// Whether a queue is stored that cannot be decoded.
bool queueIsBroken(const SharedStore& store) {
  const auto text = store.readText(StoreKeys::pendingSmsQueue);
  if (!text) return isStored(StoreKeys::pendingSmsQueue);
  try {
    return !platform::JSONDecoder::arrayOfObjects(*text).empty();
  } catch (const platform::DecodingError&) {
    return true;
  }
}

// Returns the queue; nullopt, after printing the reason, when it cannot be read.
std::optional<Items> readQueue() {
  const auto store = SharedStore::open(appGroup);
  if (!store) {
    failWithoutStore();
    return std::nullopt;
  }
  Items items = PendingSmsQueue::load(*store);
  if (items.empty() && queueIsBroken(*store)) {
    fail("the stored queue cannot be read; the next text that is queued replaces it");
    return std::nullopt;
  }
  return items;
}

// Returns the index for the typed number `text`; nullopt when it is not a valid number.
std::optional<std::size_t> indexFrom(const std::string& text) {
  std::size_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number == 0) return std::nullopt;
  return number - 1;
}

int failWithoutNumber() {
  return fail("N must be the number of a text, as shown by kivo-phone queue", exitBadUsage);
}

int failWithoutText(std::size_t index, std::size_t count) {
  if (count == 0) return fail("nothing waits to be sent");
  return fail("there is no text " + std::to_string(index + 1) + "; the last one is " +
              std::to_string(count));
}

int showQueue(const GivenParameters&) {
  const auto items = readQueue();
  if (!items) return exitFailure;
  return print(QueueListing::text(*items, platform::Date::now(), screenWidth()));
}

int showText(const GivenParameters& given) {
  const auto index = indexFrom(given.at("N"));
  if (!index) return failWithoutNumber();
  const auto items = readQueue();
  if (!items) return exitFailure;
  if (*index >= items->size()) return failWithoutText(*index, items->size());
  return print(QueueListing::details((*items)[*index], platform::Date::now(),
                                     onTerminal() ? Controls::escaped : Controls::asTheyAre));
}

int exportQueue(const GivenParameters&) {
  const auto items = readQueue();
  if (!items) return exitFailure;
  std::vector<platform::JSONEncoder> objects;
  for (const PendingSmsItem& item : *items) objects.push_back(item.encode());
  const std::string text = platform::JSONEncoder::arrayText(objects);
  return print(linux_platform::jsonForStandardOutput(text) + "\n");
}

bool isConfirmed(const PendingSmsItem& item) {
  std::cerr << QueueListing::details(item, platform::Date::now(), Controls::escaped)
            << "\nDrop this text, so that it is never sent? [y/N] " << std::flush;
  std::string answer;
  if (!std::getline(std::cin, answer)) std::cerr << '\n';
  return answer == "y" || answer == "Y" || answer == "yes";
}

int removeText(const PendingSmsItem& item, std::size_t index) {
  auto store = SharedStore::open(appGroup);
  if (!store) return failWithoutStore();
  switch (QueueRemoval::remove(item, index, *store)) {
    case QueueRemoval::Outcome::removed:
      return print("Dropped.\n");
    case QueueRemoval::Outcome::busy:
      return fail("texts are being sent just now; nothing was dropped, try again in half a minute");
    case QueueRemoval::Outcome::gone:
      return fail("the text has left the queue meanwhile; nothing was dropped");
    case QueueRemoval::Outcome::notWritten:
      return fail("nothing was dropped");
  }
  return exitFailure;
}

int dropText(const GivenParameters& given) {
  const auto index = indexFrom(given.at("N"));
  if (!index) return failWithoutNumber();
  const bool asks = !given.contains("--yes");
  if (asks && isatty(STDIN_FILENO) != 1) {
    return fail("there is no terminal to confirm on; --yes drops without asking", exitBadUsage);
  }
  const auto items = readQueue();
  if (!items) return exitFailure;
  if (*index >= items->size()) return failWithoutText(*index, items->size());
  const PendingSmsItem& item = (*items)[*index];
  if (asks && !isConfirmed(item)) return fail("nothing was dropped");
  return removeText(item, *index);
}

std::string countedTexts(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " text" : " texts");
}

// Prints the result of sending; returns 0 when no text that was tried is left.
int reportSending(const QueueSending::Result& result) {
  if (result.end == QueueSending::Result::End::busy && result.sent + result.failed == 0) {
    return fail("texts are being sent just now; try again in half a minute");
  }
  std::string lines = "Sent " + countedTexts(result.sent) + ".\n";
  if (result.dropped > 0) {
    lines += "Dropped " + countedTexts(result.dropped) + " that had failed ten times.\n";
  }
  if (const int failed = print(lines); failed != 0 || result.failed == 0) return failed;
  const auto last = linux_platform::lastExchange();
  const std::string why = last ? WaitingTexts::failureOf(*last).value_or("") : "";
  return fail(countedTexts(result.failed) + " failed and still wait" +
              (result.failed == 1 ? "s" : "") + (why.empty() ? "" : ": " + why));
}

int sendQueue(const GivenParameters&) {
  const auto items = readQueue();
  if (!items) return exitFailure;
  if (items->empty()) return print("Nothing waits to be sent.\n");
  auto store = SharedStore::open(appGroup);
  if (!store) return failWithoutStore();
  const auto userId = store->readNonEmptyText(StoreKeys::userId);
  const auto base = store->readNonEmptyText(StoreKeys::supabaseUrl);
  if (!userId || !base || !SMSExtractionClient::endpoint(*base)) {
    return fail("not signed in; run kivo-phone sign-in first");
  }
  // A failed attempt would count as one of the ten that a text has.
  const BackendFindings findings = BackendCheck::find(*base);
  if (!findings.answers()) {
    return fail("nothing was sent: " +
                linux_platform::escapedControls(BackendCheck::sentences(findings).front()));
  }
  QueueSending::Result result;
  linux_platform::InstalledPlatform installed(extensionBundle);
  linux_platform::TaskExecutor executor(1);
  executor.perform(installed.asOneRun(QueueSending::send(*store, *userId, *base, result)));
  return reportSending(result);
}

}  // namespace

std::vector<linux_platform::Command> queueCommands() {
  const linux_platform::CommandParameter number{
      "N", "The number of a text, as shown by kivo-phone queue"};
  return {
      {"queue", "Show the texts that wait to be sent", {}, showQueue},
      {"queue show", "Show all of one text that waits", {number}, showText},
      {"queue send", "Send the texts that wait, now", {}, sendQueue},
      {"queue export", "Print the texts that wait as one JSON array", {}, exportQueue},
      {"queue drop",
       "Drop a text, after asking",
       {number, {"--yes", "Drop it without asking", Kind::flag}},
       dropText},
  };
}

}  // namespace kivo
