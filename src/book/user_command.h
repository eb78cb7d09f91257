// A command by which the user changes the book.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace kivo::book {

/// A command under way.
struct UserCommand {
  /// The name in the history, such as "edit 3 --category Dining".
  std::string words;
  /// The block of text that it added to the file of templates; empty for none.
  std::string addedTemplate = {};
  /// The number in the history; absent until a step of it has changed something.
  std::optional<std::int64_t> number = {};
};

/// Returns `value` as one word of `UserCommand::words`, in quotes where it needs them.
std::string commandWord(const std::string& value);

/// A command that can be taken back.
struct PastCommand {
  std::int64_t number = 0;
  std::chrono::sys_seconds moment = {};
  std::string words;
  std::string addedTemplate;
  /// The transactions, rules, rates, accounts and budgets that it added, changed or removed.
  std::int64_t transactions = 0;
  std::int64_t rules = 0;
  std::int64_t rates = 0;
  std::int64_t accounts = 0;
  std::int64_t budgets = 0;
  /// The transactions that it deleted.
  std::int64_t deleted = 0;
};

}  // namespace kivo::book
