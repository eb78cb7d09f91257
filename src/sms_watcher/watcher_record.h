// Stores which messages were handled, and since when each sender is named. Contains salted hashes
// only, no text and no number.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/foundation/date.h"

namespace kivo {

/// Not thread-safe. Each change is durable when its call returns.
class WatcherRecord {
 public:
  /// How many handled messages are remembered after they are gone from the modems.
  static constexpr int mostRemembered = 10'000;

  /// Opens the suite app.kivo.SmsWatcher, creating it when absent. Throws Failure when that fails,
  /// after a line on standard error when the reason is the file or its folder. `remembered` is for
  /// tests.
  static WatcherRecord open(int remembered = mostRemembered);

  WatcherRecord(WatcherRecord&& other) noexcept;
  WatcherRecord& operator=(WatcherRecord&& other) noexcept;
  ~WatcherRecord();

  /// Returns the message's key: a keyed hash of the three arguments, the same in every process.
  [[nodiscard]] std::string markOf(const std::string& number, const std::string& sent,
                                   const std::string& text) const;

  /// Also true when the disk cannot be read, so that no message is handled twice.
  [[nodiscard]] bool isHandled(const std::string& mark) const;

  /// Returns false when that cannot be written.
  bool setHandled(const std::string& mark, platform::Moment now);

  /// Records that the modems hold exactly the messages of `marks`, handled or not. Of the other
  /// handled messages, removes the oldest beyond the number that is remembered. A failure is
  /// reported on standard error.
  void heldByModems(const std::set<std::string>& marks, platform::Moment now);

  /// Returns since when each of `senders` is named: `named` for one that was not named at the last
  /// call, or whose stored time is after `now` because the clock was ahead. Forgets all others.
  std::map<std::string, platform::Moment> namedSince(const std::vector<std::string>& senders,
                                                     platform::Moment named, platform::Moment now);

 private:
  struct Suite;
  explicit WatcherRecord(std::unique_ptr<Suite> suite);

  std::unique_ptr<Suite> suite_;
};

}  // namespace kivo
