// A reading in one line, for comparing in tests.
#pragma once

#include <string>
#include <string_view>

#include "recognition/reading.h"

namespace kivo::recognition {

using money::Kind;

inline std::string kindText(const Reading& reading) {
  switch (reading.outcome) {
    case Outcome::declined:
      return "declined";
    case Outcome::notATransaction:
      return "none";
    case Outcome::needsReview:
      return "review";
    case Outcome::transaction:
      break;
  }
  if (reading.kind == Kind::transfer) return "transfer";
  return reading.kind == Kind::income ? "income" : "expense";
}

/// Such as "expense 150.00 | Tulip Store", or "review USD 9.99" in a book of another currency.
inline std::string readingText(const Reading& reading, const money::CurrencyCode& book,
                               bool withPayee) {
  std::string text = kindText(reading);
  if (reading.outcome == Outcome::declined || reading.outcome == Outcome::notATransaction)
    return text;
  text += ' ';
  if (!reading.amount) return text + "?";
  if (reading.amount->currency != book) text += reading.amount->currency.text() + " ";
  text += amountText(*reading.amount);
  if (withPayee) text += " | " + (reading.payee.empty() ? "-" : reading.payee);
  return text;
}

/// Such as "expense 150.00 | Tulip Store": the reading of `message` in a book of Egyptian pounds.
inline std::string readingOf(std::string_view message) {
  return readingText(read(message, "EGP"), "EGP", true);
}

}  // namespace kivo::recognition
