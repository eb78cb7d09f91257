// One text that waits to be sent again. Does not know when or how.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"

namespace kivo {

/// A queued text with everything that its next attempt needs. Texts are UTF-8.
struct PendingSmsItem {
  /// The JSON keys, which are the fields' names.
  struct CodingKeys {
    static constexpr std::string_view id = "id";
    static constexpr std::string_view smsText = "smsText";
    static constexpr std::string_view expenseDate = "expenseDate";
    static constexpr std::string_view queuedAt = "queuedAt";
    static constexpr std::string_view retryCount = "retryCount";
    static constexpr std::string_view source = "source";
    static constexpr std::string_view amount = "amount";
    static constexpr std::string_view merchant = "merchant";
  };

  /// The idempotency key of the attempt that failed, used again by every later one.
  std::string id;
  /// The text to send, as it was sent first.
  std::string smsText;
  /// The day of the first attempt, "yyyy-MM-dd".
  std::string expenseDate;
  /// When it was queued: an internet date-time in UTC, to the second.
  std::string queuedAt;
  /// How many times sending it again has failed.
  std::int64_t retryCount;
  /// "sms" or "apple_pay". Like the two below, kept for the app and read by nobody here.
  std::string source;
  std::optional<double> amount = std::nullopt;
  std::optional<std::string> merchant = std::nullopt;

  /// Reads the record; `amount` and `merchant` may be absent or null. Throws DecodingError.
  static PendingSmsItem decode(const platform::JSONObject& object);
  /// Writes the record; an absent `amount` or `merchant` is left out. Throws NSError when the
  /// amount is not finite.
  [[nodiscard]] platform::JSONEncoder encode() const;

  bool operator==(const PendingSmsItem&) const = default;
};

}  // namespace kivo
