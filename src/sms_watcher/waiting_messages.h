// The queue of messages to be handed on, in memory.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo {

/// One message to be handed on.
struct WaitingMessage {
  /// Its key in WatcherRecord.
  std::string mark;
  std::string number;
  std::string text;
  /// Nullopt when the modem does not report it.
  std::optional<platform::Moment> sent;
};

class WaitingMessages {
 public:
  [[nodiscard]] bool empty() const { return fresh_.empty() && failed_.empty(); }
  [[nodiscard]] bool contains(const std::string& mark) const;

  /// Inserts `message` by its time, messages without a time last, and before all that were put
  /// back.
  void add(WaitingMessage message);
  /// Removes and returns the first message; there must be one.
  WaitingMessage takeFirst();
  /// Appends `message` behind all others, so that one that fails does not block them.
  void putBack(WaitingMessage message);
  /// Removes the messages for which `isMeant` is false.
  void keep(const std::function<bool(const WaitingMessage&)>& isMeant);

 private:
  std::deque<WaitingMessage> fresh_;
  std::deque<WaitingMessage> failed_;
};

}  // namespace kivo
