#include "phone/queue_commands.h"

#include <charconv>
#include <cstddef>
#include <iostream>
#include <string>

#include "extraction/sms_extraction_client.h"
#include "phone/backend_check.h"
#include "phone/phone_store.h"
#include "phone/queue_listing.h"
#include "phone/queue_removal.h"
#include "phone/queue_sending.h"
#include "phone/waiting_texts.h"
#include "platform/foundation/date.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/screen.h"
#include "queue/pending_sms_queue.h"

namespace kivo {
namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::print;
using linux_platform::Prompt;
using Controls = QueueListing::Controls;
using Items = std::vector<PendingSmsItem>;
using Kind = linux_platform::CommandParameter::Kind;

// Whether a queue is stored that cannot be decoded.
bool queueIsBroken(const SharedStore& store) {
  const auto text = store.readText(StoreKeys::pendingSmsQueue);
  if (!text) {
    const std::string key(StoreKeys::pendingSmsQueue.name);
    return openDefaults().dictionaryRepresentation().contains(key);  // no text
  }
  try {
    return !platform::JSONDecoder::arrayOfObjects(*text).empty();
  } catch (const platform::DecodingError&) {
    return true;
  }
}

Items readQueue() {
  const SharedStore store = openStore();
  Items items = PendingSmsQueue::load(store);
  if (items.empty() && queueIsBroken(store)) {
    throw CommandFailure(
        "the stored queue cannot be read; the next text that is queued replaces it");
  }
  return items;
}

// Returns the index for the typed number N.
std::size_t indexFrom(const GivenParameters& given) {
  const std::string& text = given.at("N");
  std::size_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number == 0) {
    throw BadUsage("N must be the number of a text, as shown by kivo-phone queue");
  }
  return number - 1;
}

const PendingSmsItem& itemAt(std::size_t index, const Items& items) {
  if (items.empty()) throw CommandFailure("nothing waits to be sent");
  if (index < items.size()) return items[index];
  throw CommandFailure("there is no text " + std::to_string(index + 1) + "; the last one is " +
                       std::to_string(items.size()));
}

void showQueue(const GivenParameters&) {
  print(QueueListing::text(readQueue(), platform::Date::now(), linux_platform::screenWidth()));
}

void showText(const GivenParameters& given) {
  const std::size_t index = indexFrom(given);
  const Items items = readQueue();
  print(QueueListing::details(
      itemAt(index, items), platform::Date::now(),
      linux_platform::onTerminal() ? Controls::escaped : Controls::asTheyAre));
}

void exportQueue(const GivenParameters&) {
  std::vector<platform::JSONEncoder> objects;
  for (const PendingSmsItem& item : readQueue()) objects.push_back(item.encode());
  const std::string text = platform::JSONEncoder::arrayText(objects);
  print(linux_platform::jsonForStandardOutput(text) + "\n");
}

void confirmDropping(const PendingSmsItem& item) {
  const std::string question =
      QueueListing::details(item, platform::Date::now(), Controls::escaped) +
      "\nDrop this text, so that it is never sent?";
  if (Prompt(std::cin).confirms(question, Prompt::Preset::no)) return;
  throw CommandFailure("nothing was dropped");
}

void removeText(const PendingSmsItem& item, std::size_t index) {
  SharedStore store = openStore();
  switch (QueueRemoval::remove(item, index, store)) {
    case QueueRemoval::Outcome::removed:
      return print("Dropped.\n");
    case QueueRemoval::Outcome::busy:
      throw CommandFailure(
          "texts are being sent just now; nothing was dropped, try again in half a minute");
    case QueueRemoval::Outcome::gone:
      throw CommandFailure("the text has left the queue meanwhile; nothing was dropped");
    case QueueRemoval::Outcome::notWritten:
      throw CommandFailure("nothing was dropped");
  }
}

void dropText(const GivenParameters& given) {
  const std::size_t index = indexFrom(given);
  const bool asks = !given.contains("--yes");
  if (asks && !linux_platform::inputIsTerminal()) {
    throw BadUsage("there is no terminal to confirm on; --yes drops without asking");
  }
  const Items items = readQueue();
  const PendingSmsItem& item = itemAt(index, items);
  if (asks) confirmDropping(item);
  removeText(item, index);
}

std::string countedTexts(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " text" : " texts");
}

// Prints the result of sending. Throws when a text that was tried is left.
void reportSending(const QueueSending::Result& result) {
  if (result.end == QueueSending::Result::End::busy && result.sent + result.failed == 0) {
    throw CommandFailure("texts are being sent just now; try again in half a minute");
  }
  std::string lines = "Sent " + countedTexts(result.sent) + ".\n";
  if (result.dropped > 0) {
    lines += "Dropped " + countedTexts(result.dropped) + " that had failed ten times.\n";
  }
  print(lines);
  if (result.failed == 0) return;
  const auto last = linux_platform::lastExchange();
  const std::string why = last ? WaitingTexts::failureOf(*last).value_or("") : "";
  throw CommandFailure(countedTexts(result.failed) + " failed and still wait" +
                       (result.failed == 1 ? "s" : "") + (why.empty() ? "" : ": " + why));
}

void sendQueue(const GivenParameters&) {
  if (readQueue().empty()) return print("Nothing waits to be sent.\n");
  SharedStore store = openStore();
  const auto userId = store.readNonEmptyText(StoreKeys::userId);
  const auto base = store.readNonEmptyText(StoreKeys::supabaseUrl);
  if (!userId || !base || !SMSExtractionClient::endpoint(*base)) {
    throw CommandFailure("not signed in; run kivo-phone sign-in first");
  }
  // A failed attempt would count as one of the ten that a text has.
  const BackendFindings findings = BackendCheck::find(*base);
  if (!findings.answers()) {
    throw CommandFailure("nothing was sent: " + BackendCheck::sentences(findings).front());
  }
  QueueSending::Result result;
  linux_platform::InstalledPlatform installed(extensionBundle);
  linux_platform::TaskExecutor executor(1);
  executor.perform(installed.asOneRun(QueueSending::send(store, *userId, *base, result)));
  reportSending(result);
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
