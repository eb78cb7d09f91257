#include "book/erased_person.h"

#include <vector>

#include "book/database.h"
#include "book/history.h"
#include "book/look_alikes.h"

namespace kivo::book {
namespace {

std::vector<std::int64_t> numbers(Database& database, const char* sql, const std::string& userId) {
  Statement query(database, sql);
  query.bind(userId);
  std::vector<std::int64_t> found;
  while (next(query)) found.push_back(query.integer(0));
  return found;
}

}  // namespace

std::int64_t erasePerson(Database& database, const std::string& userId) {
  // Their notes and their words may hold what is erased.
  for (const std::int64_t command : numbers(database, R"(
         SELECT command FROM past_transactions WHERE user = ?1 OR
           id IN (SELECT id FROM transactions WHERE user = ?1)
         UNION SELECT command FROM past_answers WHERE user = ?1
         UNION SELECT taken_by FROM ignored WHERE user = ?1 AND taken_by IS NOT NULL)",
                                            userId)) {
    deleteCommand(database, command);
  }
  const std::vector<std::int64_t> entries =
      numbers(database, "SELECT id FROM transactions WHERE user = ?", userId);
  const std::vector<std::int64_t> halves = numbers(database, R"(
    SELECT id FROM transactions WHERE user <> ?1 AND
      counterpart IN (SELECT id FROM transactions WHERE user = ?1))",
                                                   userId);
  constexpr const char* const changes[] = {
      R"(DELETE FROM separated WHERE one IN (SELECT id FROM transactions WHERE user = ?1) OR
           other IN (SELECT id FROM transactions WHERE user = ?1))",
      R"(UPDATE transactions SET counterpart = NULL WHERE
           counterpart IN (SELECT id FROM transactions WHERE user = ?1))",
      "DELETE FROM ignored WHERE user = ?1", "DELETE FROM answers WHERE user = ?1",
      "DELETE FROM transactions WHERE user = ?1"};
  for (const char* const sql : changes) {
    Statement change(database, sql);
    run(change.bind(userId));
  }
  for (const std::int64_t id : halves) markAlikeAgain(database, id);
  return static_cast<std::int64_t>(entries.size());
}

}  // namespace kivo::book
