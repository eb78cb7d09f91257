#include "recognition/templates/message_template.h"

#include "money/kind.h"
#include "recognition/amount_digits.h"
#include "recognition/merchant_categories.h"
#include "recognition/name_text.h"
#include "recognition/templates/message_text.h"

namespace kivo::recognition {

using money::Kind;
using money::kindFromText;
using money::Money;

namespace {

// The description of a transaction that names no payee.
const char* descriptionOf(Kind kind) {
  if (kind == Kind::income) return "Deposit";
  return kind == Kind::transfer ? "Own transfer" : "Payment";
}

std::string categoryOf(Kind kind, const std::string& payee, const Reading& rules) {
  if (const auto byName = merchantCategory(payee); kind == Kind::expense && !byName.empty()) {
    return std::string(byName);
  }
  if (rules.kind == kind && !rules.category.empty() && rules.payee == payee) return rules.category;
  if (kind == Kind::income) return "Income";
  return kind == Kind::transfer ? "Transfer" : "Other";
}

}  // namespace

Reading readingAs(Kind kind, const std::optional<Money>& amount, std::string_view payee,
                  const Reading& rules) {
  Reading reading{.outcome = Outcome::needsReview, .kind = kind, .amount = amount};
  reading.payee = shownPayee(payee);
  reading.description = reading.payee.empty() ? descriptionOf(kind) : reading.payee;
  reading.category = categoryOf(kind, reading.payee, rules);
  reading.refund = kind == Kind::income && rules.refund;
  reading.incoming = kind == Kind::income || (kind == Kind::transfer && rules.incoming);
  reading.account = rules.account;
  reading.reference = rules.reference;
  reading.balance = rules.balance;
  return reading;
}

Reading readingBy(const MessageTemplate& taught, const PatternFit& fit, const Reading& rules,
                  const money::CurrencyCode& bookCurrency) {
  if (!taught.kind) return {};
  const money::CurrencyCode currency = taught.currency.value_or(bookCurrency);
  std::optional<std::int64_t> units;
  if (fit.amounts.size() == 1) units = minorUnitsOf(fit.amounts.front(), currency.text());
  if (units == 0) return {};
  const auto amount = units ? std::optional(Money{*units, currency}) : std::nullopt;
  Reading reading = readingAs(*taught.kind, amount, fit.payee, rules);
  if (amount && currency == bookCurrency) reading.outcome = Outcome::transaction;
  if (!taught.description.empty()) reading.description = taught.description;
  if (!taught.category.empty()) reading.category = taught.category;
  return reading;
}

Reading readWith(const std::vector<MessageTemplate>& templates, std::string_view text,
                 const money::CurrencyCode& bookCurrency) {
  Reading rules = read(text, bookCurrency);
  if (templates.empty()) return rules;
  const std::string form = templateForm(partThatCounts(text));
  for (auto taught = templates.rbegin(); taught != templates.rend(); ++taught) {
    if (const auto fit = taught->pattern.fit(form)) {
      return readingBy(*taught, *fit, rules, bookCurrency);
    }
  }
  return rules;
}

const char* taughtKindText(std::optional<Kind> kind) { return kind ? kindText(*kind) : "none"; }

std::optional<std::optional<Kind>> taughtKindFromText(std::string_view text) {
  if (text == "none") return std::optional<Kind>();
  if (const auto kind = kindFromText(text)) return std::optional<std::optional<Kind>>(kind);
  return std::nullopt;
}

}  // namespace kivo::recognition
