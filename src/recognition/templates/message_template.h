// A template that the user taught: a pattern, and how to read the messages that match it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "recognition/reading.h"
#include "recognition/templates/message_pattern.h"

namespace kivo::recognition {

struct MessageTemplate {
  /// The pattern as it was written.
  std::string text;
  /// `text`, parsed. Has {amount} when there is a kind.
  MessagePattern pattern;
  /// Absent for messages that are no payment.
  std::optional<money::Kind> kind = {};
  /// The currency of {amount}; absent for the book's.
  std::optional<money::CurrencyCode> currency = {};
  /// The description, instead of the payee; empty to keep that.
  std::string description = {};
  /// The category, instead of the one by the payee's name; empty to keep that.
  std::string category = {};

  /// Returns whether both read every message in the same way.
  [[nodiscard]] bool readsAs(const MessageTemplate& other) const {
    return text == other.text && kind == other.kind && currency == other.currency &&
           description == other.description && category == other.category;
  }
};

/// Returns the reading of a message as a movement of this kind and sum, with `payee` as the other
/// party, for review. Account, reference, balance, and what the kind leaves open of `refund` and
/// `incoming`, come from `rules`, the reading by the rules.
Reading readingAs(money::Kind kind, const std::optional<money::Money>& amount,
                  std::string_view payee, const Reading& rules);

/// Returns the reading of a message that the pattern of `taught` matched as `fit`, for a book in
/// `bookCurrency`. `rules`, the reading by the rules, gives the same as for `readingAs`. The
/// outcome is `needsReview` with the sum when that is in another currency, and without a sum when
/// the amount or the match are ambiguous; `notATransaction` when the sum is zero.
Reading readingBy(const MessageTemplate& taught, const PatternFit& fit, const Reading& rules,
                  const money::CurrencyCode& bookCurrency);

/// Reads `text` by the last of `templates` that matches; as `read` (recognition/reading.h) when no
/// template does.
Reading readWith(const std::vector<MessageTemplate>& templates, std::string_view text,
                 const money::CurrencyCode& bookCurrency);

/// Returns "expense", "income", "transfer", or "none" for an absent `kind`.
const char* taughtKindText(std::optional<money::Kind> kind);
/// Returns the kind of that name, an absent kind for "none"; nullopt for another text.
std::optional<std::optional<money::Kind>> taughtKindFromText(std::string_view text);

}  // namespace kivo::recognition
