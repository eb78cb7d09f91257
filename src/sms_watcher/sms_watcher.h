// Decides which messages are handed on, in which order, and when to retry. WatchProgram reads and
// sends them.
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

/// Not thread-safe. Two messages with the same sender, time and text count as one.
class SmsWatcher {
 public:
  using Clock = std::chrono::steady_clock;
  /// `settle` is the wait after a new message, since several arrive in any order when a modem is
  /// switched on. After a failure the wait is `first`, which doubles each time, up to `longest`.
  struct Pauses {
    std::chrono::milliseconds settle = std::chrono::seconds(1);
    std::chrono::milliseconds first = std::chrono::seconds(2);
    std::chrono::milliseconds longest = std::chrono::minutes(5);
  };
  /// Whether the given messages are all that the modems hold.
  enum class Extent { everything, some };

  /// A message that was sent longer than this before its sender was named is not handed on: it is
  /// old news and would count as paid today. Long enough for wrong clocks and time zones.
  static constexpr std::chrono::hours reachBack{24};

  SmsWatcher(WatcherRecord record, Pauses pauses);

  /// From now on hands on only messages that match one of `senders`, and drops the waiting ones
  /// that do not. `changed` is when the settings were last changed. A time in the future is from a
  /// clock that was ahead and counts as now.
  void setSenders(const std::vector<std::string>& senders, platform::Moment changed);

  /// Queues those of `messages` that are to be handed on and were not yet. Returns how many from
  /// named senders it left out because they are too old.
  std::size_t take(const std::vector<ModemMessage>& messages, Extent extent, Clock::time_point now);

  /// Returns the time until the next message is to be handed on; nullopt while one is in progress
  /// or when none waits.
  [[nodiscard]] std::optional<std::chrono::milliseconds> untilNext(Clock::time_point now) const;

  /// Returns the text of the next message, which is then in progress. Call it only when `untilNext`
  /// is zero.
  std::string beginNext();

  /// The message in progress was handled and is never handed on again. Returns false when that
  /// could not be written to disk; the next process would then hand it on again.
  bool answered();
  /// The message in progress failed: it is tried again after all others.
  void failed(Clock::time_point now);

 private:
  void readNamingTimes();
  [[nodiscard]] bool isNamed(const std::string& number) const;
  [[nodiscard]] bool isNews(const std::string& number, platform::Moment sent) const;
  [[nodiscard]] bool isKnown(const std::string& mark) const;
  bool record(const std::string& mark);

  WatcherRecord record_;
  Pauses pauses_;
  std::vector<std::string> senders_;
  platform::Moment changed_;
  std::map<std::string, platform::Moment> namedSince_;
  WaitingMessages waiting_;
  std::optional<WaitingMessage> underWay_;
  std::set<std::string> unrecorded_;  // handled, but not on disk yet
  Clock::time_point notBefore_{};
  std::chrono::milliseconds pause_;
};

}  // namespace kivo
