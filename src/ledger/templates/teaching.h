// Makes a template from a message and what a person says about it. Asks and stores nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ledger/templates/message_template.h"

namespace kivo::ledger {

/// What a person says about a message.
struct TaughtParts {
  /// Absent when the message is no payment; the sum does not matter then.
  std::optional<Kind> kind = {};
  /// The number of the sum as the message writes it, with text around it where that is needed to
  /// tell it from an equal one.
  std::string amount = {};
  /// The other party as the message writes it; empty when it names none.
  std::string payee = {};
  /// An ISO 4217 code; empty for the currency that the message states beside the number, the book's
  /// when it states none.
  std::string currency = {};
};

/// A template, or why none can be made.
struct Taught {
  enum class Part { message, amount, payee };

  std::optional<MessageTemplate> made = {};
  /// The part that is wrong.
  Part part = Part::message;
  /// What is wrong with it, as the rest of a sentence that begins with the part.
  std::string error = {};
};

/// Makes the template of `message` for a book in `bookCurrency`. The sum becomes {amount}, the
/// payee {payee}, each other word with a digit {any}, as do the months, days of the week and halves
/// of the day beside one, so that no other figure of the message is in the template. The template
/// fits `message` and finds the same parts in it.
Taught teach(std::string_view message, const TaughtParts& parts, std::string_view bookCurrency);

/// The number by which `message` states `sum`, as it writes it; empty when it states it not exactly
/// once.
std::string numberFor(std::string_view message, const Money& sum);

/// The number of the first sum that `message` states, as it writes it; empty when it states none,
/// or the number more than once.
std::string firstSum(std::string_view message, std::string_view bookCurrency);

/// Whether `message` holds `payee`, as `teach` looks for it.
bool namesPayee(std::string_view message, std::string_view payee);

}  // namespace kivo::ledger
