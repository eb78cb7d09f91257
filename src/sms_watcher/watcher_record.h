// What the watcher of messages keeps on disk: which messages were handled, and since when a sender
// is named. Holds no text and no number, only salted marks of them.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/foundation/date.h"

namespace kivo {

/// Used on one thread. Each change is durable when its call returns.
class WatcherRecord {
 public:
  /// How many messages that no modem holds any more are remembered.
  static constexpr int mostRemembered = 10'000;

  /// Opens the suite app.kivo.SmsWatcher, making it when there is none; none when that cannot be
  /// done. `remembered` is for tests.
  static std::optional<WatcherRecord> open(int remembered = mostRemembered);

  WatcherRecord(WatcherRecord&& other) noexcept;
  WatcherRecord& operator=(WatcherRecord&& other) noexcept;
  ~WatcherRecord();

  /// By what the message is known here: a keyed hash of the three, the same in every process.
  [[nodiscard]] std::string markOf(const std::string& number, const std::string& sent,
                                   const std::string& text) const;

  /// True as well when the disk cannot be read: what may have been handled is not handled again.
  [[nodiscard]] bool isHandled(const std::string& mark) const;

  /// False when that cannot be written.
  bool setHandled(const std::string& mark, platform::Moment now);

  /// Tells that the modems hold the messages of `marks`, handled or not, and no others. Forgets the
  /// oldest of the others beyond the number that is remembered.
  void heldByModems(const std::set<std::string>& marks, platform::Moment now);

  /// Since when each of `senders` is named: `named` for one that was not named at the last call.
  std::map<std::string, platform::Moment> namedSince(const std::vector<std::string>& senders,
                                                     platform::Moment named);

 private:
  struct Suite;
  explicit WatcherRecord(std::unique_ptr<Suite> suite);

  std::unique_ptr<Suite> suite_;
};

}  // namespace kivo
