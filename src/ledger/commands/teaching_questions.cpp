#include "ledger/commands/teaching_questions.h"

#include <iostream>

#include "platform/linux/foundation/safe_text.h"

namespace kivo::ledger {

using money::Kind;
using recognition::CannotTeach;
using recognition::MessageTemplate;
using recognition::taughtKindFromText;
using recognition::taughtKindText;
using recognition::TaughtParts;

// Returns the answer, or `proposed` for an empty one; nullopt when the input ends.
std::optional<std::string> TeachingQuestions::answer(const std::string& question,
                                                     const std::string& proposed) {
  const std::string shown =
      proposed.empty() ? "" : " [" + linux_platform::escapedControls(proposed) + "]";
  auto typed = prompt_->ask(question + shown);
  return typed && typed->empty() ? proposed : typed;
}

std::optional<std::optional<Kind>> TeachingQuestions::askKind(const TaughtParts& proposed) {
  while (const auto typed = answer("Kind: expense, income, transfer, or none for no payment?",
                                   taughtKindText(proposed.kind))) {
    for (const char* const name : {"expense", "income", "transfer", "none"}) {
      if (!typed->empty() && std::string_view(name).starts_with(*typed)) {
        return taughtKindFromText(name);
      }
    }
    std::cerr << "Answer expense, income, transfer or none.\n";
  }
  return std::nullopt;
}

std::optional<std::string> TeachingQuestions::askAmount(const std::string& proposed) {
  return answer("The sum, as the message writes it?", proposed);
}

std::optional<std::string> TeachingQuestions::askPayee(const std::optional<Kind>& kind,
                                                       const std::string& proposed) {
  const std::string other = kind == Kind::income ? "Who paid" : "Who was paid";
  auto typed = answer(other + ", as the message writes it, or - for no name?",
                      proposed.empty() ? "-" : proposed);
  return typed == "-" ? "" : typed;
}

std::optional<MessageTemplate> TeachingQuestions::ask(std::string_view message, const Given& given,
                                                      const TaughtParts& proposed,
                                                      const money::CurrencyCode& bookCurrency) {
  const auto kind = given.kind ? given.kind : askKind(proposed);
  if (!kind) return std::nullopt;
  TaughtParts parts{.kind = *kind,
                    .amount = given.amount.value_or(""),
                    .payee = given.payee.value_or(""),
                    .currency = given.currency};
  const auto failsIn = [&](CannotTeach::Part part) {
    try {
      recognition::teach(message, parts, bookCurrency);
    } catch (const CannotTeach& wrong) {
      if (wrong.part() != part) return false;
      std::cerr << "That " << wrong.what() << ".\n";
      return true;
    }
    return false;
  };
  if (parts.kind && !given.amount) {
    do {
      const auto amount = askAmount(proposed.amount);
      if (!amount) return std::nullopt;
      parts.amount = *amount;
    } while (failsIn(CannotTeach::Part::amount));
  }
  if (parts.kind && !given.payee) {
    do {
      const auto payee = askPayee(parts.kind, proposed.payee);
      if (!payee) return std::nullopt;
      parts.payee = *payee;
    } while (failsIn(CannotTeach::Part::payee));
  }
  return recognition::teach(message, parts, bookCurrency);
}

}  // namespace kivo::ledger
