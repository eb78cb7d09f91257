// Asks the user questions on standard error.
#pragma once

#include <istream>
#include <optional>
#include <string>

namespace kivo::linux_platform {

/// Asks questions and reads the answers, one line each.
class Prompt {
 public:
  /// The answer that Enter alone gives.
  enum class Preset { yes, no };

  /// `answers` must outlive this object.
  explicit Prompt(std::istream& answers) : answers_(&answers) {}

  /// Asks "`question` " and returns the answer without surrounding blanks, as valid UTF-8; nullopt
  /// when the input ends.
  std::optional<std::string> ask(const std::string& question);

  /// As `ask`, but returns the line byte for byte as it was typed.
  std::optional<std::string> askForLine(const std::string& question);

  /// Asks "`question` [Y/n]" or "`question` [y/N]", as `preset` says. Returns whether the answer is
  /// y, Y or yes; the end of the input means no.
  bool confirms(const std::string& question, Preset preset);

 private:
  std::istream* answers_;
};

/// Whether standard input is a terminal.
bool inputIsTerminal();

}  // namespace kivo::linux_platform
