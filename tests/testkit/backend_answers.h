// Bodies of backend answers.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "extraction/sms_extraction_response.h"

namespace kivo::testkit {

/// A saved transaction, 150 at Carrefour (Groceries) unless a test says otherwise.
struct SavedAnswer {
  std::optional<std::string> type = std::nullopt;
  double amount = 150;
  std::string description = "Carrefour";
  std::string category = "Groceries";
};

/// The body for `saved`.
inline std::string savedBody(SavedAnswer saved = {}) {
  const SMSExtractionResponse response{
      .saved = true,
      .transaction_type = std::move(saved.type),
      .expense = SMSExtractionResponse::SavedExpense{.id = "exp-1",
                                                     .description = std::move(saved.description),
                                                     .amount = saved.amount,
                                                     .category = std::move(saved.category),
                                                     .expense_date = "2026-01-31"},
  };
  return response.encode();
}

inline constexpr const char* notSavedBody = R"({"saved":false})";
inline constexpr const char* declinedBody = R"({"saved":false,"reason":"declined"})";
inline constexpr const char* savedWithoutExpenseBody = R"({"saved":true})";

}  // namespace kivo::testkit
