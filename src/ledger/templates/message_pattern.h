// The text of a template with its placeholders, and how it fits messages. Knows no currency.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::ledger {

/// How a pattern fits a message.
struct PatternFit {
  /// The digits and separators of the number that is {amount}; empty only without that placeholder.
  /// Two when several numbers of the message could be it.
  std::vector<std::string> amounts;
  /// The text of {payee}; empty without that placeholder, and with two amounts.
  std::string payee;
};

/// Literal text with the placeholders {amount} (a number), {payee} and {any} (any text that is not
/// empty). "{{" in it is the brace itself.
class MessagePattern {
 public:
  /// A pattern, or why the text is none: one line that quotes nothing from it.
  struct Parsed;
  static Parsed parse(std::string_view text);

  /// `text` with its braces doubled: a pattern that is literal.
  static std::string escaped(std::string_view text);

  /// Fits the pattern to a whole message, in template form (message_text.h); nullopt when it does
  /// not fit. {payee} takes as much as it can. Time is linear in the lengths of both.
  [[nodiscard]] std::optional<PatternFit> fit(std::string_view message) const;

  [[nodiscard]] bool hasAmount() const { return amount_.has_value(); }

 private:
  MessagePattern() = default;

  // literals_[n] is in front of placeholder n; the last one is behind the last placeholder.
  std::vector<std::string> literals_;
  // As literals_, from the end to the begin, each backwards.
  std::vector<std::string> backwards_;
  std::optional<std::size_t> amount_;
  std::optional<std::size_t> payee_;

  struct Range;
  [[nodiscard]] std::optional<std::string> payeeIn(const Range& range) const;
  [[nodiscard]] std::optional<PatternFit> fitWithAmount(std::string_view message,
                                                        const std::string& reversed) const;
};

struct MessagePattern::Parsed {
  std::optional<MessagePattern> pattern = {};
  std::string error = {};
};

}  // namespace kivo::ledger
