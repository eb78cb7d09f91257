#include "book/book_categories.h"

#include <optional>
#include <set>
#include <vector>

#include "book/database.h"
#include "book/history.h"
#include "names/name_fold.h"
#include "names/standard_categories.h"

namespace kivo::book {

namespace {

using names::foldedName;

struct Spelling {
  std::string folded;
  std::string name;
};

// A category has its own name and stands above those that begin with it and a colon; a semicolon
// follows the colon. Each question is for the first row in the order of the index of categories:
// otherwise PostgreSQL gathers all of the category before it looks at one.
std::optional<std::string> spellingInUse(Database& database, const std::string& folded,
                                         std::int64_t except) {
  Statement query(database, R"(
    SELECT name FROM categories WHERE folded = ?1 AND (
      (SELECT 1 FROM transactions WHERE id <> ?2 AND category BETWEEN name AND name
        ORDER BY category LIMIT 1) IS NOT NULL OR
      (SELECT 1 FROM transactions WHERE id <> ?2 AND category > name || ':' AND
        category < name || ';' ORDER BY category LIMIT 1) IS NOT NULL))");
  if (!next(query.bind(folded).bind(except))) return std::nullopt;
  return query.text(0);
}

std::string standardSpelling(const std::string& folded, const std::string& name) {
  for (const std::string_view standard : names::standardCategories) {
    if (foldedName(standard) == folded) return std::string(standard);
  }
  return name;
}

// The category and those above it, the highest first.
std::vector<Spelling> spellingsOf(Database& database, std::string_view category,
                                  std::int64_t except) {
  std::vector<Spelling> levels;
  for (std::string_view left = category == "__system_transfer__" ? "Transfer" : category;;) {
    const std::size_t colon = left.find(':');
    std::string name = levels.empty() ? "" : levels.back().name + ":";
    name += left.substr(0, colon);
    const std::string folded = foldedName(name);
    const auto used = spellingInUse(database, folded, except);
    levels.push_back({folded, used ? *used : standardSpelling(folded, name)});
    if (colon == std::string_view::npos) return levels;
    left.remove_prefix(colon + 1);
  }
}

}  // namespace

std::string spelledCategory(Database& database, std::string_view category, std::int64_t except) {
  return spellingsOf(database, category, except).back().name;
}

std::string keepCategory(Database& database, ChangeNotes& notes, std::string_view category,
                         std::int64_t except) {
  const std::vector<Spelling> levels = spellingsOf(database, category, except);
  for (const Spelling& level : levels) {
    Statement kept(database, "SELECT 1 FROM categories WHERE folded = ? AND name = ?");
    if (next(kept.bind(level.folded).bind(level.name))) continue;
    notes.category(level.folded);
    Statement removal(database, "DELETE FROM categories WHERE folded = ?");
    run(removal.bind(level.folded));
    Statement insertion(database, "INSERT INTO categories (folded, name) VALUES (?, ?)");
    run(insertion.bind(level.folded).bind(level.name));
  }
  return levels.back().name;
}

std::vector<std::string> knownCategories(Database& database) {
  std::set<std::string> names(names::standardCategories.begin(), names::standardCategories.end());
  names.erase("Credit Card Settlement");  // an answer's name for a transfer
  Statement query(database, "SELECT name FROM categories");
  while (next(query)) names.insert(query.text(0));
  return {names.begin(), names.end()};
}

}  // namespace kivo::book
