#include "book/history.h"

#include <array>
#include <limits>

#include "book/database.h"
#include "platform/foundation/date.h"

namespace kivo::book {
namespace {

// A table whose rows are noted.
struct Noted {
  const char* table;
  // The table of their notes, which begins with the command and whether the row existed.
  const char* past;
  const char* key;
  // The columns that are noted, the key first.
  const char* columns;
};

constexpr Noted transactions{
    "transactions", "past_transactions", "id",
    "id, user, key, date, kind, minor_units, currency, description, category, payee, folded_payee, "
    "account, reference, state, edited, balance, balance_currency, original, original_currency, "
    "refund, incoming, counterpart"};
constexpr Noted rules{"rules", "past_rules", "number",
                      "number, payee, written, has_wildcard, description, category, kind"};
// By the currency, all of whose rates are noted together.
constexpr Noted rates{"rates", "past_rates", "currency", "currency, first_day, rate"};
constexpr Noted categories{"categories", "past_categories", "folded", "folded, name"};
constexpr Noted separated{"separated", "past_separated", "number", "number, one, other"};
constexpr Noted accounts{"accounts", "past_accounts", "digits", "digits, name, credit"};
// By the category, all of whose budgets are noted together.
constexpr Noted budgets{"budgets", "past_budgets", "folded",
                        "folded, month, category, minor_units, currency"};
constexpr std::array settings = {rules, rates, categories, separated, accounts, budgets};

constexpr std::chrono::days daysKept(30);
constexpr std::int64_t commandsKept = 1'000;

std::chrono::sys_seconds now() {
  return std::chrono::floor<std::chrono::seconds>(platform::Date::now());
}

// Of several changes of a row, the first note counts.
std::string withoutNote(const Noted& noted) {
  return std::string("NOT EXISTS (SELECT 1 FROM ") + noted.past + " WHERE command = ?1 AND " +
         noted.key + " = ?2)";
}

std::string copySql(const Noted& noted) {
  return std::string("INSERT INTO ") + noted.past + " (command, existed, " + noted.columns +
         ") SELECT ?1, 1, " + noted.columns + " FROM " + noted.table + " WHERE " + noted.key +
         " = ?2 AND " + withoutNote(noted);
}

std::string absenceSql(const Noted& noted) {
  return std::string("INSERT INTO ") + noted.past + " (command, existed, " + noted.key +
         ") SELECT ?1, 0, ?2 WHERE " + withoutNote(noted);
}

template <typename Key>
void noteAbsence(Database& database, const Noted& noted, std::int64_t command, const Key& key) {
  const std::string sql = absenceSql(noted);
  Statement note(database, sql);
  run(note.bind(command).bind(key));
}

// Of a row that does not exist, the absence.
template <typename Key>
void noteRow(Database& database, const Noted& noted, std::int64_t command, const Key& key) {
  const std::string sql = copySql(noted);
  Statement note(database, sql);
  run(note.bind(command).bind(key));
  noteAbsence(database, noted, command, key);
}

void runFor(Database& database, std::int64_t command, const std::string& sql) {
  Statement statement(database, sql);
  run(statement.bind(command));
}

std::string keysWhere(const Noted& noted, const char* condition) {
  return std::string("(SELECT ") + noted.key + " FROM " + noted.past + " WHERE command = ?1 AND " +
         condition + ")";
}

void restoreRows(Database& database, std::int64_t command, const Noted& noted) {
  const std::string table = noted.table;
  runFor(database, command,
         "DELETE FROM " + table + " WHERE " + noted.key + " IN " + keysWhere(noted, "TRUE"));
  runFor(database, command,
         "INSERT INTO " + table + " (" + noted.columns + ") SELECT " + noted.columns + " FROM " +
             noted.past + " WHERE command = ? AND existed <> 0");
}

// The texts stay as they are: that of a removed transaction is erased.
void restoreTransactions(Database& database, std::int64_t command) {
  runFor(database, command,
         "DELETE FROM transactions WHERE id IN " + keysWhere(transactions, "existed = 0"));
  const std::string columns = transactions.columns;
  const std::string past = " FROM past_transactions WHERE command = ?1 AND existed <> 0";
  runFor(database, command,
         "UPDATE transactions SET (" + columns + ") = (SELECT " + columns + past +
             " AND past_transactions.id = transactions.id) WHERE id IN (SELECT id" + past + ")");
  runFor(database, command,
         "INSERT INTO transactions (" + columns + ") SELECT " + columns + past +
             " AND id NOT IN (SELECT id FROM transactions)");
}

}  // namespace

std::string commandWord(const std::string& value) {
  const bool isWord = value.find_first_of(" \t\n'\"") == std::string::npos;
  if (isWord) return value;
  return value.find('"') == std::string::npos ? '"' + value + '"' : "'" + value + "'";
}

void ChangeNotes::noteFor(std::optional<std::int64_t> number) {
  command_ = number;
  any_ = false;
}

void ChangeNotes::transaction(std::int64_t id) {
  any_ = true;
  if (command_) noteRow(database_, transactions, *command_, id);
}

void ChangeNotes::addedTransaction(std::int64_t id) {
  any_ = true;
  if (command_) noteAbsence(database_, transactions, *command_, id);
}

void ChangeNotes::addedRule(std::int64_t number) {
  any_ = true;
  if (command_) noteAbsence(database_, rules, *command_, number);
}

void ChangeNotes::rule(std::int64_t number) {
  any_ = true;
  if (command_) noteRow(database_, rules, *command_, number);
}

void ChangeNotes::addedSeparation(std::int64_t number) {
  any_ = true;
  if (command_) noteAbsence(database_, separated, *command_, number);
}

void ChangeNotes::separation(std::int64_t number) {
  any_ = true;
  if (command_) noteRow(database_, separated, *command_, number);
}

void ChangeNotes::ratesOf(const std::string& currency) {
  any_ = true;
  if (command_) noteRow(database_, rates, *command_, currency);
}

void ChangeNotes::account(const std::string& digits) {
  any_ = true;
  if (command_) noteRow(database_, accounts, *command_, digits);
}

void ChangeNotes::budgetsOf(const std::string& folded) {
  any_ = true;
  if (command_) noteRow(database_, budgets, *command_, folded);
}

void ChangeNotes::category(const std::string& folded) {
  if (command_) noteRow(database_, categories, *command_, folded);
}

void ChangeNotes::answer(const std::string& userId, const std::string& key) {
  any_ = true;
  if (!command_) return;
  Statement note(database_, "INSERT INTO past_answers (command, user, key) VALUES (?, ?, ?)");
  run(note.bind(*command_).bind(userId).bind(key));
}

std::int64_t insertCommand(Database& database, const UserCommand& command) {
  Statement outdated(database, R"(
    SELECT number FROM commands WHERE moment < ?1 OR number NOT IN
      (SELECT number FROM commands ORDER BY number DESC LIMIT ?2))");
  outdated.bind((now() - daysKept).time_since_epoch().count()).bind(commandsKept - 1);
  std::vector<std::int64_t> numbers;
  while (next(outdated)) numbers.push_back(outdated.integer(0));
  for (const std::int64_t number : numbers) deleteCommand(database, number);

  Statement insertion(
      database, "INSERT INTO commands (moment, words, template) VALUES (?, ?, ?) RETURNING number");
  insertion.bind(now().time_since_epoch().count()).bind(command.words).bind(command.addedTemplate);
  if (!next(insertion)) throw BookFailure("a new row has no number");
  const std::int64_t number = insertion.integer(0);
  run(insertion);
  return number;
}

bool writeTemplate(Database& database, std::int64_t number, const std::string& addedTemplate) {
  Statement update(database, "UPDATE commands SET template = ? WHERE number = ? RETURNING number");
  if (!next(update.bind(addedTemplate).bind(number))) return false;
  run(update);
  return true;
}

void deleteCommand(Database& database, std::int64_t number) {
  for (const char* const table :
       {"past_transactions", "past_answers", "past_rules", "past_rates", "past_categories",
        "past_separated", "past_accounts", "past_budgets"}) {
    runFor(database, number, std::string("DELETE FROM ") + table + " WHERE command = ?");
  }
  runFor(database, number, "DELETE FROM commands WHERE number = ?");
}

bool hasCommand(Database& database, std::int64_t number) {
  Statement query(database, "SELECT 1 FROM commands WHERE number = ?");
  return next(query.bind(number));
}

std::vector<PastCommand> pastCommands(Database& database, std::int64_t most) {
  Statement query(database, R"(
    SELECT number, moment, words, template,
      (SELECT count(*) FROM past_transactions WHERE command = number),
      (SELECT count(*) FROM past_rules WHERE command = commands.number),
      (SELECT count(DISTINCT currency) FROM past_rates WHERE command = number),
      (SELECT count(*) FROM past_accounts WHERE command = number),
      (SELECT count(DISTINCT folded) FROM past_budgets WHERE command = number),
      (SELECT count(*) FROM past_transactions AS past WHERE command = number AND existed <> 0 AND
        NOT EXISTS (SELECT 1 FROM transactions WHERE transactions.id = past.id))
    FROM commands ORDER BY number DESC LIMIT ?)");
  query.bind(most < 0 ? std::numeric_limits<std::int64_t>::max() : most);
  std::vector<PastCommand> found;
  while (next(query)) {
    found.push_back({.number = query.integer(0),
                     .moment = std::chrono::sys_seconds(std::chrono::seconds(query.integer(1))),
                     .words = query.text(2),
                     .addedTemplate = query.text(3),
                     .transactions = query.integer(4),
                     .rules = query.integer(5),
                     .rates = query.integer(6),
                     .accounts = query.integer(7),
                     .budgets = query.integer(8),
                     .deleted = query.integer(9)});
  }
  return found;
}

void takeBack(Database& database, std::int64_t number) {
  // Its own answers are forgotten, and the messages that it put aside.
  const std::string own = "(SELECT user, key FROM past_answers WHERE command = ?1)";
  runFor(database, number, "DELETE FROM ignored WHERE (user, key) IN " + own);
  runFor(database, number, "DELETE FROM answers WHERE (user, key) IN " + own);
  runFor(database, number, "UPDATE ignored SET taken_by = NULL WHERE taken_by = ?");
  restoreTransactions(database, number);
  for (const Noted& noted : settings) restoreRows(database, number, noted);
}

}  // namespace kivo::book
