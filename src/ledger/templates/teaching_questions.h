// The questions that `kivo-ledger teach` asks at a terminal, on standard error.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

#include "ledger/templates/teaching.h"

namespace kivo::ledger {

/// Reads a person's answers, a line each.
class TeachingQuestions {
 public:
  /// `answers` outlives this.
  explicit TeachingQuestions(std::istream& answers) : answers_(&answers) {}

  /// The parts of a message that a person gave already; absent ones are asked for.
  struct Given {
    std::optional<std::optional<Kind>> kind = {};
    std::optional<std::string> amount = {};
    std::optional<std::string> payee = {};
    std::string currency = {};
  };

  /// Asks for what is not in `given` until a template can be made of `message`; Enter takes what
  /// `proposed` has. Returns nullopt at the end of the answers, and the error of a part that was
  /// given or cannot be asked for.
  std::optional<Taught> ask(std::string_view message, const Given& given,
                            const TaughtParts& proposed, std::string_view bookCurrency);

  /// Asks for the ID of an entry; empty at the end of the answers.
  std::string askId();

  /// Asks "`question` [Y/n]"; Enter is yes, the end of the answers is no.
  bool confirms(const std::string& question);

 private:
  std::optional<std::string> line(const std::string& question, const std::string& proposed);
  std::optional<std::optional<Kind>> askKind(const TaughtParts& proposed);
  bool askAmount(TaughtParts& parts, const std::string& proposed);
  bool askPayee(TaughtParts& parts, const std::string& proposed);

  std::istream* answers_;
};

}  // namespace kivo::ledger
