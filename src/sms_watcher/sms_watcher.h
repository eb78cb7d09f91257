// Decides which messages are handed on, in which order and how often it is tried. Reads and hands
// on none itself.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "sms_watcher/modem_message.h"
#include "sms_watcher/waiting_messages.h"
#include "sms_watcher/watcher_record.h"

namespace kivo {

/// Used on one thread. A message is known by its sender, the time of its sending and its text: two
/// that share all three are one.
class SmsWatcher {
 public:
  using Clock = std::chrono::steady_clock;
  /// How long it waits: `settle` after a message has come, since several come in any order when a
  /// modem is switched on; after one that could not be handed on `first`, then twice as long each
  /// time, `longest` at most.
  struct Pauses {
    std::chrono::milliseconds settle = std::chrono::seconds(1);
    std::chrono::milliseconds first = std::chrono::seconds(2);
    std::chrono::milliseconds longest = std::chrono::minutes(5);
  };
  /// Whether the messages given are all that the modems hold.
  enum class Extent { everything, some };

  /// A message is left where it is when it was sent longer than this before its sender was named:
  /// what a person has had for years is no news, and would count as paid today. Long enough for
  /// clocks and time zones that are wrong.
  static constexpr std::chrono::hours reachBack{24};

  SmsWatcher(WatcherRecord record, Pauses pauses);

  /// From now on only messages that one of `senders` means are handed on; `changed` is when the
  /// settings that name them were. Forgets waiting messages of others.
  void setSenders(const std::vector<std::string>& senders, platform::Moment changed);

  /// Takes those of `messages` that are to be handed on and were not yet; yields how many of named
  /// senders it left because they are too old.
  std::size_t take(const std::vector<ModemMessage>& messages, Extent extent, Clock::time_point now);

  /// How long until a message is to be handed on; none while one is under way or none waits.
  [[nodiscard]] std::optional<std::chrono::milliseconds> untilNext(Clock::time_point now) const;

  /// The text of the next message, which is under way from now on; to be called when it is time.
  std::string beginNext();

  /// The message under way was answered: it is never handed on again. False when that is not
  /// recorded on the disk, so that the next process would.
  bool answered();
  /// It was not answered: it is tried again after all others.
  void failed(Clock::time_point now);

 private:
  [[nodiscard]] bool isNamed(const std::string& number) const;
  [[nodiscard]] bool isNews(const std::string& number, platform::Moment sent) const;
  [[nodiscard]] bool isKnown(const std::string& mark) const;
  bool record(const std::string& mark);

  WatcherRecord record_;
  Pauses pauses_;
  std::map<std::string, platform::Moment> namedSince_;
  WaitingMessages waiting_;
  std::optional<WaitingMessage> underWay_;
  std::set<std::string> unrecorded_;  // answered, but not on the disk yet
  Clock::time_point notBefore_{};
  std::chrono::milliseconds pause_;
};

}  // namespace kivo
