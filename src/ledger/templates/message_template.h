// What a person taught about a bank's messages: a pattern, and what a message that fits it says.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ledger/recognition/reading.h"
#include "ledger/templates/message_pattern.h"

namespace kivo::ledger {

struct MessageTemplate {
  /// As it was written.
  std::string text;
  /// `text`, parsed. Has {amount} when there is a kind.
  MessagePattern pattern;
  /// Absent for messages that are no payment.
  std::optional<Kind> kind = {};
  /// The currency of {amount}, an ISO 4217 code; empty for the book's.
  std::string currency = {};
  /// In the place of the payee's name; empty for none.
  std::string description = {};
  /// In the place of the category by the payee's name; empty for none.
  std::string category = {};

  /// Whether both read every message alike.
  [[nodiscard]] bool readsAs(const MessageTemplate& other) const {
    return text == other.text && kind == other.kind && currency == other.currency &&
           description == other.description && category == other.category;
  }
};

/// Reads a message that fits `pattern` of `taught` as `fit`, for a book in `bookCurrency`. Account,
/// reference and balance come from `rules`, its reading by rules. The outcome is `needsReview`
/// without a sum when its digits can be read in two ways or several numbers could be it, with the
/// sum when it is in another currency; `notATransaction` for a sum of zero.
Reading readingBy(const MessageTemplate& taught, const PatternFit& fit, const Reading& rules,
                  std::string_view bookCurrency);

/// As `read` (recognition/reading.h), but by the last of `templates` that fits, where one does.
Reading readWith(const std::vector<MessageTemplate>& templates, std::string_view text,
                 std::string_view bookCurrency);

/// "expense", "income", "transfer" or "none", as `MessageTemplate::kind`.
const char* taughtKindText(std::optional<Kind> kind);
/// The kind of that name, which is absent for "none"; nullopt for another text.
std::optional<std::optional<Kind>> taughtKindFromText(std::string_view text);

}  // namespace kivo::ledger
