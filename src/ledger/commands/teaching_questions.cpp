#include "ledger/commands/teaching_questions.h"

#include <iostream>

#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"

namespace kivo::ledger {

using money::Kind;
using recognition::Taught;
using recognition::taughtKindFromText;
using recognition::taughtKindText;
using recognition::TaughtParts;

// Returns the trimmed answer, or `proposed` for an empty one; nullopt when the input ends.
std::optional<std::string> TeachingQuestions::line(const std::string& question,
                                                   const std::string& proposed) {
  std::cerr << question;
  if (!proposed.empty()) std::cerr << " [" << linux_platform::escapedControls(proposed) << "]";
  std::cerr << " " << std::flush;
  std::string typed;
  if (!std::getline(*answers_, typed)) {
    std::cerr << '\n';
    return std::nullopt;
  }
  constexpr std::string_view blanks = " \t\r";
  typed.erase(typed.find_last_not_of(blanks) + 1);
  typed.erase(0, typed.find_first_not_of(blanks));
  return typed.empty() ? proposed : platform::repairedUtf8(typed);
}

std::string TeachingQuestions::askId() { return line("Teach which one? ID:", "").value_or(""); }

bool TeachingQuestions::confirms(const std::string& question) {
  const auto answer = line(question + " [Y/n]", "");
  return answer && (answer->empty() || answer == "y" || answer == "Y" || answer == "yes");
}

std::optional<std::optional<Kind>> TeachingQuestions::askKind(const TaughtParts& proposed) {
  while (const auto answer = line("Kind: expense, income, transfer, or none for no payment?",
                                  taughtKindText(proposed.kind))) {
    for (const char* const name : {"expense", "income", "transfer", "none"}) {
      if (!answer->empty() && std::string_view(name).starts_with(*answer)) {
        return taughtKindFromText(name);
      }
    }
    std::cerr << "Answer expense, income, transfer or none.\n";
  }
  return std::nullopt;
}

bool TeachingQuestions::askAmount(TaughtParts& parts, const std::string& proposed) {
  const auto answer = line("The sum, as the message writes it?", proposed);
  parts.amount = answer.value_or("");
  return answer.has_value();
}

bool TeachingQuestions::askPayee(TaughtParts& parts, const std::string& proposed) {
  const std::string other = parts.kind == Kind::income ? "Who paid" : "Who was paid";
  const auto answer = line(other + ", as the message writes it, or - for no name?",
                           proposed.empty() ? "-" : proposed);
  parts.payee = answer.value_or("-");
  if (parts.payee == "-") parts.payee.clear();
  return answer.has_value();
}

std::optional<Taught> TeachingQuestions::ask(std::string_view message, const Given& given,
                                             const TaughtParts& proposed,
                                             std::string_view bookCurrency) {
  const auto kind = given.kind ? given.kind : askKind(proposed);
  if (!kind) return std::nullopt;
  TaughtParts parts{.kind = *kind,
                    .amount = given.amount.value_or(""),
                    .payee = given.payee.value_or(""),
                    .currency = given.currency};
  const auto failsIn = [&](Taught::Part part) {
    const Taught taught = recognition::teach(message, parts, bookCurrency);
    if (taught.made || taught.part != part) return false;
    std::cerr << "That " << taught.error << ".\n";
    return true;
  };
  if (parts.kind && !given.amount) {
    do {
      if (!askAmount(parts, proposed.amount)) return std::nullopt;
    } while (failsIn(Taught::Part::amount));
  }
  if (parts.kind && !given.payee) {
    do {
      if (!askPayee(parts, proposed.payee)) return std::nullopt;
    } while (failsIn(Taught::Part::payee));
  }
  return recognition::teach(message, parts, bookCurrency);
}

}  // namespace kivo::ledger
