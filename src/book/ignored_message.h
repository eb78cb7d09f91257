// A message that was not booked, though it holds a sum.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "money/day.h"

namespace kivo::book {

struct IgnoredMessage {
  enum class Reason {
    /// It reports a payment that was refused.
    declined,
    /// It reports no movement of money.
    notATransaction,
  };

  /// Unique, and never reused.
  std::int64_t number = 0;
  /// The idempotency key of the message, and the user that sent it.
  std::string key;
  std::string userId;
  money::Day date;
  Reason reason = Reason::notATransaction;
  std::string text;
};

/// Returns "declined" or "not_a_transaction", as in the answer to the message.
const char* reasonText(IgnoredMessage::Reason reason);
/// Returns the reason of that name; absent for another text.
std::optional<IgnoredMessage::Reason> reasonFromText(std::string_view text);

}  // namespace kivo::book
