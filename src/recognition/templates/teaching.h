// Makes a template from a message and its parts as the user named them. Asks and stores nothing.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "recognition/templates/message_template.h"

namespace kivo::recognition {

/// The parts of a message as the user named them.
struct TaughtParts {
  /// Absent when the message is no payment; the sum does not matter then.
  std::optional<money::Kind> kind = {};
  /// The amount as the message writes it, with text around it if the same number occurs twice; or
  /// the sum as `moneyFromText` reads it.
  std::string amount = {};
  /// The payee as the message writes it; empty when it names none.
  std::string payee = {};
  /// Absent for the currency that the message states next to the amount, or else
  /// the book's.
  std::optional<money::CurrencyCode> currency = {};
};

/// No template can be made of a message. `what` is a sentence without its subject, which is the
/// part that is wrong.
class CannotTeach : public std::invalid_argument {
 public:
  enum class Part { message, amount, payee };

  CannotTeach(Part part, const std::string& why) : std::invalid_argument(why), part_(part) {}

  [[nodiscard]] Part part() const { return part_; }

 private:
  Part part_;
};

/// Makes a template from `message` for a book in `bookCurrency`. The amount becomes {amount}, the
/// payee {payee}, and the other figures {any} (`withoutFigures`), so that the template holds no
/// private number. The template matches `message` and finds the same parts in it. Throws
/// CannotTeach.
MessageTemplate teach(std::string_view message, const TaughtParts& parts,
                      const money::CurrencyCode& bookCurrency);

/// Returns the amount of `sum` as `message` writes it; empty unless it occurs exactly once.
std::string numberFor(std::string_view message, const money::Money& sum);

/// Returns the amount of the first sum in `message` as the message writes it; empty when the
/// message holds no sum, or that number more than once.
std::string firstSum(std::string_view message, const money::CurrencyCode& bookCurrency);

/// Returns whether `teach` finds `payee` in `message`.
bool namesPayee(std::string_view message, std::string_view payee);

}  // namespace kivo::recognition
