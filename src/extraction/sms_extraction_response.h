// The backend's answer to a text, and its JSON form.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"

namespace kivo {

/// Texts are UTF-8, as received.
struct SMSExtractionResponse {
  /// The transaction as the backend stored it.
  struct SavedExpense {
    /// The JSON keys. They equal the names of the fields.
    struct CodingKeys {
      static constexpr std::string_view id = "id";
      static constexpr std::string_view description = "description";
      static constexpr std::string_view amount = "amount";
      static constexpr std::string_view category = "category";
      static constexpr std::string_view expense_date = "expense_date";
    };

    /// The backend's identifier. Required, though unused here.
    std::string id;
    /// The merchant or payee.
    std::string description;
    /// In the user's currency.
    double amount;
    std::string category;
    /// As the backend reports it. Neither parsed nor used here.
    std::string expense_date;

    /// Decodes the record. Every member is required. Throws DecodingError for the first member that
    /// fails.
    static SavedExpense decode(const platform::JSONObject& object);
    /// Encodes all members. Throws NSError when the amount is not finite.
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
  /// Why nothing was stored: "declined" for a payment that the bank declined, or any other text.
  std::optional<std::string> reason = std::nullopt;
  /// The transaction's kind: "expense", "income" or any other text. Absent means "expense".
  std::optional<std::string> transaction_type = std::nullopt;
  std::optional<SavedExpense> expense = std::nullopt;

  /// Decodes the record from a JSON document. `saved` is required; the other members may be absent
  /// or null. Throws DecodingError for the first member that fails.
  static SMSExtractionResponse decode(std::string_view document);
  /// Encodes the record without its empty optionals. Throws NSError when the amount is not finite.
  [[nodiscard]] std::string encode() const;

  bool operator==(const SMSExtractionResponse&) const = default;
};

}  // namespace kivo
