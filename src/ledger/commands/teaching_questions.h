// The questions that `kivo-ledger teach` asks at a terminal, on standard error.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/terminal/prompt.h"
#include "recognition/templates/teaching.h"

namespace kivo::ledger {

/// Asks for the parts of a message.
class TeachingQuestions {
 public:
  /// `prompt` must outlive this object.
  explicit TeachingQuestions(linux_platform::Prompt& prompt) : prompt_(&prompt) {}

  /// The parts that were given as options. Absent ones are asked for.
  struct Given {
    std::optional<std::optional<money::Kind>> kind = {};
    std::optional<std::string> amount = {};
    std::optional<std::string> payee = {};
    std::optional<money::CurrencyCode> currency = {};
  };

  /// Asks for the parts that `given` lacks, again after a wrong answer; Enter takes the part in
  /// `proposed`. Returns the template; nullopt when the input ends. Throws CannotTeach for a given
  /// part and for the message.
  std::optional<recognition::MessageTemplate> ask(std::string_view message, const Given& given,
                                                  const recognition::TaughtParts& proposed,
                                                  const money::CurrencyCode& bookCurrency);

 private:
  std::optional<std::string> answer(const std::string& question, const std::string& proposed);
  std::optional<std::optional<money::Kind>> askKind(const recognition::TaughtParts& proposed);
  std::optional<std::string> askAmount(const std::string& proposed);
  std::optional<std::string> askPayee(const std::optional<money::Kind>& kind,
                                      const std::string& proposed);

  linux_platform::Prompt* prompt_;
};

}  // namespace kivo::ledger
