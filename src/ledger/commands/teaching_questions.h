// The questions that `kivo-ledger teach` asks at a terminal, on standard error.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

#include "recognition/templates/teaching.h"

namespace kivo::ledger {

/// Asks questions and reads the answers, one line each.
class TeachingQuestions {
 public:
  /// `answers` must outlive this object.
  explicit TeachingQuestions(std::istream& answers) : answers_(&answers) {}

  /// The parts that were given as options. Absent ones are asked for.
  struct Given {
    std::optional<std::optional<money::Kind>> kind = {};
    std::optional<std::string> amount = {};
    std::optional<std::string> payee = {};
    std::string currency = {};
  };

  /// Asks for the parts that `given` lacks, again after a wrong answer; Enter takes the part in
  /// `proposed`. Returns the template, or the error of a given part or of the message; nullopt when
  /// the input ends.
  std::optional<recognition::Taught> ask(std::string_view message, const Given& given,
                                         const recognition::TaughtParts& proposed,
                                         std::string_view bookCurrency);

  /// Asks for the ID of an entry. Returns an empty text when the input ends.
  std::string askId();

  /// Asks "`question` [Y/n]". Enter means yes, the end of the input no.
  bool confirms(const std::string& question);

 private:
  std::optional<std::string> line(const std::string& question, const std::string& proposed);
  std::optional<std::optional<money::Kind>> askKind(const recognition::TaughtParts& proposed);
  bool askAmount(recognition::TaughtParts& parts, const std::string& proposed);
  bool askPayee(recognition::TaughtParts& parts, const std::string& proposed);

  std::istream* answers_;
};

}  // namespace kivo::ledger
