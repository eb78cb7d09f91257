// Says what rules mean for later payments, and offers to change the earlier ones.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "book/book.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// The rules that one command made, one for each payee.
class MadeRules {
 public:
  /// Adds `kept`, if it is one, in the place of an earlier one with its number. `kind` is the kind
  /// of the payments of its payee.
  void add(const std::optional<book::KeptRule>& kept, money::Kind kind);

  [[nodiscard]] bool empty() const { return made_.empty(); }

  /// Returns a line for each rule, and how to list them, folded to the screen. Empty when there are
  /// none.
  [[nodiscard]] std::string sentences() const;

  /// Prints `sentences`. Where the rules would change earlier payments of `book`, changes them as a
  /// step of `command` when --also-earlier is given or the user at the terminal says so, and says
  /// what it did. Throws BookFailure.
  void tell(book::Book& book, book::UserCommand& command,
            const linux_platform::GivenParameters& parameters) const;

 private:
  struct Made {
    book::KeptRule kept;
    money::Kind kind;
  };

  std::vector<Made> made_;
};

/// Whether `count` earlier payments are to be changed too: when --also-earlier is given or the user
/// at the terminal says so. Without a terminal, says that they stay, and how to change them.
bool changesEarlier(std::size_t count, const linux_platform::GivenParameters& parameters);
/// Says that `count` earlier payments were changed.
void tellChangedEarlier(std::size_t count);

/// The option --also-earlier.
linux_platform::CommandParameter alsoEarlierOption();

}  // namespace kivo::ledger
