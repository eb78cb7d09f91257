// Matches messages against a text with placeholders.
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/templates/message_text.h"

namespace kivo::recognition {

/// The parts of a message that the placeholders of a pattern matched.
struct PatternFit {
  /// The amount that {amount} matched; empty if the pattern has no {amount}. Two amounts when the
  /// match is ambiguous.
  std::vector<std::string> amounts;
  /// The text that {payee} matched; empty if the pattern has no {payee}, and with two amounts.
  std::string payee;
};

/// A text is no pattern. `what` is the reason in one line, without any part of the text.
class InvalidPattern : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// Literal text with placeholders: {amount} matches a number, {payee} and {any} match any text that
/// is not empty. "{{" is an escaped "{".
class MessagePattern {
 public:
  /// Returns `text` as a pattern. Throws InvalidPattern.
  static MessagePattern parse(std::string_view text);

  /// Returns the pattern that matches exactly `text`: its braces are doubled.
  static std::string escaped(std::string_view text);

  /// Matches a whole message in template form (message_text.h); returns nullopt when it does not
  /// match. {payee} matches as much as possible. Time is quadratic in the length of the message,
  /// some milliseconds for one of `longestMessage`, whatever the pattern.
  [[nodiscard]] std::optional<PatternFit> fit(std::string_view message) const;

  [[nodiscard]] bool hasAmount() const { return amount_.has_value(); }

 private:
  MessagePattern() = default;

  // literals_[n] precedes placeholder n; the last one follows the last placeholder.
  std::vector<std::string> literals_;
  std::optional<std::size_t> amount_;
  std::optional<std::size_t> payee_;

  // The text that {payee} matches when the literals from `first` to `last` match all of `text`;
  // empty when {payee} is not between them, absent when they do not match.
  [[nodiscard]] std::optional<std::string> payeeIn(std::string_view text, std::size_t first,
                                                   std::size_t last) const;
  [[nodiscard]] std::vector<MessageNumber> amountsIn(std::string_view message) const;
  [[nodiscard]] std::optional<PatternFit> fitWithAmount(std::string_view message) const;
};

}  // namespace kivo::recognition
