// What a bank message says, recognised by fixed rules: the embedded backend's stand-in for a real
// extraction service. Knows no exchange rates and learns nothing.
#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace kivo::MessageRecogniser {

/// The message reports no movement of money: a code, an offer, a balance, a bill to come.
struct NotATransaction {};

/// A payment that the bank declined.
struct Declined {};

/// Money moved.
struct Transaction {
  enum class Kind { expense, income };

  Kind kind = Kind::expense;
  /// Above zero, in `currency`.
  double amount = 0;
  /// An ISO 4217 code, or the user's currency as given when the message names none.
  std::string currency;
  /// The merchant or payee as the message writes it, 60 bytes at most; "Salary", "Card payment" and
  /// the like when it names none.
  std::string description;
  std::string category;
};

using Recognition = std::variant<NotATransaction, Declined, Transaction>;

/// Recognises `message` (UTF-8, English or Arabic; only its first 4096 bytes are looked at). When
/// it states the sum in two currencies, the sum in `userCurrency` counts.
Recognition recognise(std::string_view message, std::string_view userCurrency);

}  // namespace kivo::MessageRecogniser
