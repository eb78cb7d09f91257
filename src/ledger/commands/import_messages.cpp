#include "ledger/commands/import_messages.h"

#include <algorithm>
#include <chrono>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "book/current_day.h"
#include "old_messages/message_key.h"
#include "platform/foundation/date.h"
#include "platform/linux/terminal/progress_bar.h"

namespace kivo::ledger {

using money::Day;
using old_messages::OldMessage;

namespace {

// No phone sent an SMS before, so that the time is a phone's whose clock was not set.
constexpr Day firstDay = "1990-01-01";

// A message of another time zone may be from tomorrow.
Day lastDay() {
  return book::dayOf(platform::Date::now() + std::chrono::hours(24)).value_or(book::currentDay());
}

}  // namespace

std::optional<std::string> ImportedFiles::readAll(
    const std::string& words,
    const std::function<void(OldMessage, std::optional<Day>)>& use) const {
  linux_platform::ProgressBar bar(words);
  const auto count = static_cast<double>(files_.size());
  double done = 0;
  const Day last = lastDay();
  for (const auto& file : files_) {
    try {
      file.read(
          [&](OldMessage message) {
            auto day = message.moment ? book::dayOf(*message.moment) : std::nullopt;
            const bool isOther =
                day && ((days_.from && *day < *days_.from) || (days_.to && *day > *days_.to));
            if (isOther) return;
            if (day && (*day < firstDay || *day > last)) day.reset();
            use(std::move(message), day);
          },
          [&](double part) { bar.show((done + part) / count); });
    } catch (const old_messages::BrokenFile& broken) {
      return broken.what();
    }
    bar.show(++done / count);
  }
  return std::nullopt;
}

std::vector<SenderCount> ImportedFiles::senders(
    const std::function<bool(const std::string& text)>& isPayment) const {
  std::unordered_map<std::string, SenderCount> bySender;
  readAll("Reading", [&](OldMessage message, std::optional<Day> day) {
    SenderCount& count = bySender[message.sender];
    ++count.messages;
    if (day && isPayment(message.text)) ++count.payments;
  });
  std::vector<SenderCount> counts;
  for (auto& [sender, count] : bySender) {
    count.sender = sender;
    counts.push_back(std::move(count));
  }
  std::sort(counts.begin(), counts.end(), [](const SenderCount& one, const SenderCount& other) {
    return std::tuple(-one.payments, -one.messages, one.sender) <
           std::tuple(-other.payments, -other.messages, other.sender);
  });
  return counts;
}

ImportedFiles::Read ImportedFiles::read(ChosenSenders& chosen, const std::string& userId,
                                        const std::string& words,
                                        const std::function<void(recording::Message)>& use) const {
  Read read;
  read.broken = readAll(words, [&](OldMessage message, std::optional<Day> day) {
    if (!chosen.has(message.sender)) return;
    if (!day) {
      ++read.withoutDay;
      return;
    }
    std::string key = old_messages::keyOf(message);
    use({.text = std::move(message.text),
         .userId = userId,
         .expenseDate = *day,
         .idempotencyKey = std::move(key)});
  });
  return read;
}

}  // namespace kivo::ledger
