// One text in the offline queue, and its JSON form.
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
  /// The JSON keys. They equal the names of the fields.
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

  /// The idempotency key of the failed attempt. Every later attempt uses it again.
  std::string id;
  /// The text as first sent.
  std::string smsText;
  /// The day of the first attempt, "yyyy-MM-dd".
  std::string expenseDate;
  /// When it was queued: "yyyy-MM-ddThh:mm:ssZ", in UTC.
  std::string queuedAt;
  /// How many resends have failed.
  std::int64_t retryCount;
  /// "sms" or "apple_pay". The main app reads this and the two members below; the extension does
  /// not.
  std::string source;
  std::optional<double> amount = std::nullopt;
  std::optional<std::string> merchant = std::nullopt;

  /// Decodes the record. `amount` and `merchant` may be absent or null. Throws DecodingError.
  static PendingSmsItem decode(const platform::JSONObject& object);
  /// Encodes the record without an absent `amount` or `merchant`. Throws NSError when the amount is
  /// not finite.
  [[nodiscard]] platform::JSONEncoder encode() const;

  bool operator==(const PendingSmsItem&) const = default;
};

}  // namespace kivo
