#include "ledger/commands/import_senders.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "ledger/commands/command_options.h"
#include "platform/foundation/character_set.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/text_columns.h"
#include "sms_watcher/sender_pattern.h"
#include "sms_watcher/senders_file.h"

namespace kivo::ledger {
namespace {

using linux_platform::CommandFailure;
using linux_platform::Failure;

bool isAnyOf(const std::vector<std::string>& patterns, const std::string& sender) {
  return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
    return pattern == sender || SenderPattern::means(pattern, sender);
  });
}

// The watcher's senders; none when its file cannot be used, about which the watcher complains.
std::vector<std::string> watchedSenders() {
  try {
    return SendersFile::readValid().senders;
  } catch (const Failure&) {
    return {};
  }
}

// "1, 3": the places of the watcher's senders.
std::string presetFor(const std::vector<SenderCount>& counts) {
  const std::vector<std::string> watched = watchedSenders();
  std::string preset;
  for (std::size_t place = 0; place < counts.size(); ++place) {
    if (!isAnyOf(watched, counts[place].sender)) continue;
    preset += (preset.empty() ? "" : ", ") + std::to_string(place + 1);
  }
  return preset;
}

std::vector<std::string> wordsIn(std::string_view list) {
  std::vector<std::string> words;
  while (!list.empty()) {
    const std::string_view word = list.substr(0, list.find(','));
    list.remove_prefix(std::min(word.size() + 1, list.size()));
    const std::string_view trimmed = platform::trimmingWhitespaces(word);
    if (!trimmed.empty()) words.emplace_back(trimmed);
  }
  return words;
}

// The pattern that `word` of an answer names; absent when it names no sender of `counts`.
std::optional<std::string> namedBy(const std::string& word,
                                   const std::vector<SenderCount>& counts) {
  const auto place = platform::integerFromText(word);
  if (place && *place >= 1 && *place <= static_cast<std::int64_t>(counts.size())) {
    return counts[static_cast<std::size_t>(*place - 1)].sender;
  }
  const bool isThere = std::any_of(counts.begin(), counts.end(), [&](const SenderCount& count) {
    return isAnyOf({word}, count.sender);
  });
  return isThere ? std::optional(word) : std::nullopt;
}

// The patterns that `answer` names; none, after a line on standard error, when one is wrong.
std::vector<std::string> patternsIn(const std::string& answer,
                                    const std::vector<SenderCount>& counts) {
  std::vector<std::string> patterns;
  for (const std::string& word : wordsIn(answer)) {
    const auto named = namedBy(word, counts);
    if (!named) {
      std::cerr << "No message is from \"" << linux_platform::escapedControls(word) << "\".\n";
      return {};
    }
    patterns.push_back(*named);
  }
  return patterns;
}

}  // namespace

ChosenSenders::ChosenSenders(std::vector<std::string> patterns) : patterns_(std::move(patterns)) {}

bool ChosenSenders::has(const std::string& sender) {
  const auto known = known_.find(sender);
  if (known != known_.end()) return known->second;
  return known_[sender] = isAnyOf(patterns_, sender);
}

void checkSenders(const std::vector<std::string>& patterns) {
  for (const std::string& pattern : patterns) {
    try {
      SenderPattern::check(pattern);
    } catch (const Failure&) {
      throw invalid("--sender", pattern,
                    "a sender's name or number, in which * may be any characters");
    }
  }
}

std::string senderTable(const std::vector<SenderCount>& counts, Numbers numbers,
                        std::size_t width) {
  constexpr std::size_t numberWidth = 5;
  constexpr std::size_t countWidth = 10;
  const auto line = [&](const std::string& number, const std::string& payments,
                        const std::string& messages, const std::string& sender) {
    std::string front;
    if (numbers == Numbers::shown) front = linux_platform::paddedTo(numberWidth, number);
    front += linux_platform::paddedTo(countWidth, payments);
    front += linux_platform::paddedTo(countWidth, messages);
    const std::size_t left = width - std::min(width, linux_platform::columnsOf(front));
    return front + linux_platform::cutTo(left, linux_platform::escapedControls(sender)) + "\n";
  };
  std::string table = line("NR", "PAYMENTS", "MESSAGES", "SENDER");
  for (std::size_t place = 0; place < counts.size(); ++place) {
    const SenderCount& count = counts[place];
    table += line(std::to_string(place + 1), std::to_string(count.payments),
                  std::to_string(count.messages), count.sender.empty() ? "(none)" : count.sender);
  }
  return table;
}

std::vector<std::string> askForSenders(const std::vector<SenderCount>& counts) {
  const std::string preset = presetFor(counts);
  linux_platform::Prompt prompt(std::cin);
  for (;;) {
    auto answer = prompt.ask("Import whose messages? Numbers or names, with commas between:" +
                             (preset.empty() ? "" : " [" + preset + "]"));
    if (!answer) throw CommandFailure("nothing was imported");
    auto patterns = patternsIn(answer->empty() ? preset : *answer, counts);
    if (!patterns.empty()) return patterns;
  }
}

}  // namespace kivo::ledger
