#include "book/book_damage.h"

#include <filesystem>
#include <optional>

#include "book/book_command.h"
#include "book/book_file.h"
#include "book/sqlite_database.h"
#include "book/stored_entry.h"
#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/private_file.h"

namespace kivo::book {
namespace {

using linux_platform::escapedControls;

constexpr const char* thoroughCheck = "PRAGMA integrity_check(1)";

std::filesystem::path noteBeside(sqlite3* database) {
  return linux_platform::fileOf(database).string() + "-damaged";
}

// The quick check takes a third of the time, but does not compare the indices with the tables: with
// such a fault, a message can be stored and not be listed.
const char* checkFor(sqlite3* database) {
  constexpr std::uintmax_t longestThorough = 16 << 20;  // about 25,000 transactions
  std::error_code ignored;
  const auto size = std::filesystem::file_size(linux_platform::fileOf(database), ignored);
  return size <= longestThorough ? thoroughCheck : "PRAGMA quick_check(1)";
}

// The first fault that SQLite finds, in its words, which hold no stored data; absent when the file
// is whole. A check reads all of the file.
std::optional<std::string> firstFault(sqlite3* database, const char* check) {
  linux_platform::Statement query(database, check);
  if (!query.step()) {
    if (!linux_platform::isDamage(query.code())) require(query.code());
    return linux_platform::errorText(query.code());
  }
  std::string fault = query.text(0);
  if (fault == "ok") return std::nullopt;
  if (fault.starts_with("***")) fault.erase(0, fault.find('\n') + 1);  // "*** in database main ***"
  return fault;
}

// Of each transaction with a value that cannot be.
void setImpossibleAside(sqlite3* database) {
  SqliteTables tables(database);
  linux_platform::Statement query(database,
                                  "SELECT id FROM transactions WHERE state <> 'set_aside'");
  std::vector<std::int64_t> found;
  while (next(query)) {
    const auto entry = storedEntry(tables, query.integer(0));
    if (entry && entry->state == LedgerEntry::State::setAside) found.push_back(entry->id);
  }
  query.reset();
  for (const std::int64_t id : found) {
    linux_platform::Statement update(database,
                                     "UPDATE transactions SET state = 'set_aside' WHERE id = ?");
    run(update.bind(id));
  }
}

// The first fault once entries are set aside whose values cannot be.
std::optional<std::string> faultLeft(sqlite3* database, const char* check) {
  auto fault = firstFault(database, check);
  if (!fault || !fault->starts_with("CHECK constraint failed")) return fault;
  setImpossibleAside(database);
  return firstFault(database, check);
}

// Where SQLite found `fault`, and what helps.
std::string helpFor(const std::string& fault) {
  return fault + "; move its folder away, and restore a backup by " + bookCommand("restore FILE") +
         " or start with an empty book; until it is whole, messages are not taken and wait on the "
         "phone";
}

}  // namespace

void noteDamage(sqlite3* database, const std::string& what) {
  const std::string line = escapedControls(linux_platform::fileOf(database).string()) +
                           " is damaged: " + escapedControls(what);
  linux_platform::complain(bookProgram(), line);
  try {
    linux_platform::writePrivateFile(noteBeside(database), line + "\n");
  } catch (const linux_platform::Failure&) {  // the line above has said what matters
  }
}

bool isDamageNoted(sqlite3* database) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(noteBeside(database), ignored));
}

bool checkWhole(sqlite3* database) {
  const bool isNoted = isDamageNoted(database);
  const char* const check = isNoted ? thoroughCheck : checkFor(database);
  if (const auto fault = faultLeft(database, check)) {
    noteDamage(database, helpFor(*fault));
    return false;
  }
  std::error_code ignored;
  if (isNoted) std::filesystem::remove(noteBeside(database), ignored);
  return true;
}

std::optional<std::string> faultInCopy(sqlite3* database) {
  return faultLeft(database, thoroughCheck);
}

void tellFailure(sqlite3* database, const BookFailure& failure) {
  if (failure.cause() != BookFailure::Cause::damagedFile) {
    linux_platform::complain(bookProgram(),
                             "the book cannot be read or written: " + std::string(failure.what()));
    return;
  }
  std::string fault = failure.what();
  try {
    fault = firstFault(database, thoroughCheck).value_or(fault);
  } catch (const BookFailure&) {  // the file cannot be read at all
  }
  noteDamage(database, helpFor(fault));
}

}  // namespace kivo::book
