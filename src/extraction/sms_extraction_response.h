// What the backend made of a text. Does not judge it: that is the flows' business.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"

namespace kivo {

/// The backend's answer. A plain value; texts are UTF-8 and taken as they stand.
struct SMSExtractionResponse {
  /// The transaction as the backend stored it.
  struct SavedExpense {
    /// The JSON keys, which are the fields' names.
    struct CodingKeys {
      static constexpr std::string_view id = "id";
      static constexpr std::string_view description = "description";
      static constexpr std::string_view amount = "amount";
      static constexpr std::string_view category = "category";
      static constexpr std::string_view expense_date = "expense_date";
    };

    /// The backend's identifier. Read by nobody, required all the same.
    std::string id;
    /// The merchant or payee.
    std::string description;
    /// In the user's currency.
    double amount;
    std::string category;
    /// As the backend reports it; not parsed, and read by nobody.
    std::string expense_date;

    /// Reads the record; every member is required. Throws DecodingError for the first that fails.
    static SavedExpense decode(const platform::JSONObject& object);
    /// Writes all members. Throws NSError when the amount is not finite.
    [[nodiscard]] platform::JSONEncoder encode() const;

    bool operator==(const SavedExpense&) const = default;
  };

  struct CodingKeys {
    static constexpr std::string_view saved = "saved";
    static constexpr std::string_view reason = "reason";
    static constexpr std::string_view transaction_type = "transaction_type";
    static constexpr std::string_view expense = "expense";
  };

  /// True when the backend stored a transaction for the text.
  bool saved;
  /// Why nothing was stored: "declined" for a payment that the bank declined.
  std::optional<std::string> reason = std::nullopt;
  /// The transaction's kind: "expense", "income" or any other text; none counts as "expense".
  std::optional<std::string> transaction_type = std::nullopt;
  std::optional<SavedExpense> expense = std::nullopt;

  /// Reads the record from a JSON document, `saved` required, the others absent or null when empty.
  /// Throws DecodingError for the first member that fails; there is no partial record.
  static SMSExtractionResponse decode(std::string_view document);
  /// Writes the record; empty optionals are left out. Throws NSError when the amount is not finite.
  [[nodiscard]] std::string encode() const;

  bool operator==(const SMSExtractionResponse&) const = default;
};

}  // namespace kivo
