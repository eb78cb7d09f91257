// Notes what a command of the user changes in the book, so that it can be taken back. Changes no
// entry by itself but in `takeBack`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "book/user_command.h"

namespace kivo::book {

class Database;

/// Notes rows before they are changed. Without a command it notes nothing. Of several changes of
/// one row, the first note counts. The functions throw BookFailure.
class ChangeNotes {
 public:
  explicit ChangeNotes(Database& database) : database_(database) {}

  /// From now on notes changes for the command `number`, absent for none.
  void noteFor(std::optional<std::int64_t> number);
  /// Returns the command that is noted for; absent for none.
  [[nodiscard]] std::optional<std::int64_t> command() const { return command_; }
  /// Returns whether anything was noted since `noteFor`.
  [[nodiscard]] bool any() const { return any_; }

  /// To be called before the row is changed, added or removed.
  void transaction(std::int64_t id);
  /// To be called after the row was added, whose number was not known before.
  void addedTransaction(std::int64_t id);
  void addedRule(std::int64_t number);
  void rule(std::int64_t number);
  /// Of all rates of `currency`.
  void ratesOf(const std::string& currency);
  void account(const std::string& digits);
  /// Of all budgets of the category whose folded name is `folded`.
  void budgetsOf(const std::string& folded);
  /// Of two entries that a person parted.
  void addedSeparation(std::int64_t number);
  void separation(std::int64_t number);
  void category(const std::string& folded);
  /// Of an answer that is added.
  void answer(const std::string& userId, const std::string& key);
  /// Of a change that is not taken back.
  void lasting() { any_ = true; }

 private:
  Database& database_;
  std::optional<std::int64_t> command_;
  bool any_ = false;
};

/// Adds a row for a command that begins now and returns its number; removes those that are too old
/// or too many to be taken back. Throws BookFailure, as the others do.
std::int64_t insertCommand(Database& database, const UserCommand& command);
/// Writes the template that the command `number` added; returns false when it is not in the
/// history.
bool writeTemplate(Database& database, std::int64_t number, const std::string& addedTemplate);
/// Removes a command and its notes.
void deleteCommand(Database& database, std::int64_t number);
/// Returns whether the command `number` is in the history.
bool hasCommand(Database& database, std::int64_t number);
/// Returns the last `most` commands, the last one first; a negative number for all.
std::vector<PastCommand> pastCommands(Database& database, std::int64_t most);
/// Has the rows that the command `number` changed as they were before it, without the texts that
/// were erased since, and removes the command. Call it in a step; the bytes of removed texts stay
/// in the file until it is erased.
void takeBack(Database& database, std::int64_t number);

}  // namespace kivo::book
