// The messages that wait to be handed on, in the order in which they are. Keeps them in memory
// only.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo {

/// One message that is to be handed on.
struct WaitingMessage {
  /// By what the record knows it.
  std::string mark;
  std::string number;
  std::string text;
  /// None when the modem does not say.
  std::optional<platform::Moment> sent;
};

class WaitingMessages {
 public:
  [[nodiscard]] bool empty() const { return fresh_.empty() && failed_.empty(); }
  [[nodiscard]] bool contains(const std::string& mark) const;

  /// Puts `message` where the time of its sending belongs, those without a time last, before all
  /// that were put back.
  void add(WaitingMessage message);
  /// Takes out the one whose turn it is; there must be one.
  WaitingMessage takeFirst();
  /// Puts `message` behind all others, so that one that cannot be handed on keeps up none of them.
  void putBack(WaitingMessage message);
  /// Drops those that `isMeant` does not hold for.
  void keep(const std::function<bool(const WaitingMessage&)>& isMeant);

 private:
  std::deque<WaitingMessage> fresh_;
  std::deque<WaitingMessage> failed_;
};

}  // namespace kivo
