#include "server/directory.h"

#include <utility>

#include "book/current_day.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "server/device_secret.h"

namespace kivo::server {

using book::next;
using book::run;
using book::Statement;
using linux_platform::Failure;

namespace {

std::string quoted(const std::string& name) { return '"' + name + '"'; }

void requireName(const std::string& what, const std::string& name) {
  constexpr std::size_t longest = 40;
  const bool isName = !name.empty() && name.size() <= longest && !name.starts_with('-') &&
                      !name.starts_with(' ') && !name.ends_with(' ') &&
                      linux_platform::escapedControls(name) == name;
  if (isName) return;
  throw Failure(what +
                " needs a name of at most 40 bytes that can be shown, without blanks around "
                "it or a minus before it");
}

std::optional<std::int64_t> numberIn(book::Database& database, const char* sql,
                                     const std::string& name) {
  Statement query(database, sql);
  if (!next(query.bind(name))) return std::nullopt;
  return query.integer(0);
}

std::int64_t requiredPerson(book::Database& database, const std::string& name) {
  const auto number =
      numberIn(database, "SELECT number FROM people WHERE lower(name) = lower(?)", name);
  if (!number) throw Failure("there is no person " + quoted(name) + "; kivo-server list shows all");
  return *number;
}

// Throws when `sql` finds a row of that name.
void requireFree(book::Database& database, const char* sql, const std::string& name,
                 const std::string& taken) {
  if (numberIn(database, sql, name)) throw Failure(taken);
}

}  // namespace

Directory::Directory(Shelf& shelf) : shelf_(shelf), database_(shelf.directory()) {}

void Directory::addBook(const std::string& name, const money::CurrencyCode& currency) {
  requireName("a book", name);
  database_->inTransaction([&] {
    requireFree(*database_, "SELECT number FROM books WHERE lower(name) = lower(?)", name,
                "there is a book " + quoted(name) + " already");
    Statement insertion(*database_, "INSERT INTO books (name) VALUES (?) RETURNING number");
    if (!next(insertion.bind(name))) throw Failure("a new book has no number");
    const std::int64_t number = insertion.integer(0);
    run(insertion);
    shelf_.addBook(number, currency);
  });
}

void Directory::addPerson(const std::string& name, const std::string& book) {
  requireName("a person", name);
  database_->inTransaction([&] {
    const std::int64_t number = this->book(book).number;
    requireFree(*database_, "SELECT number FROM people WHERE lower(name) = lower(?)", name,
                "there is a person " + quoted(name) + " already");
    Statement insertion(*database_, "INSERT INTO people (name, book) VALUES (?, ?)");
    run(insertion.bind(name).bind(number));
  });
}

std::string Directory::addDevice(const std::string& person, const std::string& name) {
  requireName("a device", name);
  std::string secret = DeviceSecret::make();
  const std::string hash = DeviceSecret::hash(secret);
  const std::string today = book::currentDay().text();
  database_->inTransaction([&] {
    const std::int64_t number = requiredPerson(*database_, person);
    Statement known(*database_,
                    "SELECT 1 FROM devices WHERE person = ? AND lower(name) = lower(?)");
    if (next(known.bind(number).bind(name))) {
      throw Failure(person + " has a device " + quoted(name) +
                    " already; revoke it first, or choose another name");
    }
    Statement insertion(
        *database_, "INSERT INTO devices (name, person, added, secret_hash) VALUES (?, ?, ?, ?)");
    run(insertion.bind(name).bind(number).bind(today).bind(hash));
  });
  return secret;
}

void Directory::revokeDevice(const std::string& name, const std::string& person) {
  Statement query(*database_, R"(
    SELECT devices.number, people.name FROM devices JOIN people ON people.number = person
    WHERE lower(devices.name) = lower(?1) AND (?2 = '' OR lower(people.name) = lower(?2))
    ORDER BY people.name)");
  query.bind(name).bind(person);
  std::vector<std::int64_t> found;
  std::string owners;
  while (next(query)) {
    found.push_back(query.integer(0));
    owners += (owners.empty() ? "" : ", ") + query.text(1);
  }
  if (found.empty()) {
    throw Failure("there is no device " + quoted(name) + "; kivo-server list shows all");
  }
  if (found.size() > 1) {
    throw Failure("several people have a device " + quoted(name) + ": " + owners +
                  "; name one by --person");
  }
  Statement removal(*database_, "DELETE FROM devices WHERE number = ?");
  run(removal.bind(found.front()));
}

void Directory::removePerson(const std::string& person,
                             const std::function<void(const Access& person)>& erase) {
  const Access access = accessOf(person);
  const std::int64_t number = requiredPerson(*database_, person);
  // First the devices, so that no message comes after the erasure.
  Statement revocation(*database_, "DELETE FROM devices WHERE person = ?");
  run(revocation.bind(number));
  erase(access);
  Statement removal(*database_, "DELETE FROM people WHERE number = ?");
  run(removal.bind(number));
}

BookPlace Directory::book(const std::string& name) const {
  Statement query(*database_, "SELECT number, name FROM books WHERE lower(name) = lower(?)");
  if (!next(query.bind(name))) {
    throw Failure("there is no book " + quoted(name) + "; kivo-server list shows all");
  }
  return {query.integer(0), query.text(1)};
}

Access Directory::accessOf(const std::string& person) const {
  requiredPerson(*database_, person);
  Statement query(*database_, R"(
    SELECT people.name, books.name FROM people JOIN books ON books.number = book
    WHERE lower(people.name) = lower(?))");
  if (!next(query.bind(person))) throw Failure("the book of " + quoted(person) + " is missing");
  return {.book = book(query.text(1)), .person = query.text(0)};
}

std::optional<Access> Directory::access(std::string_view secret) const {
  const std::string hash = DeviceSecret::hash(secret);
  Statement query(*database_, R"(
    SELECT books.number, books.name, people.name FROM devices
      JOIN people ON people.number = person JOIN books ON books.number = book
    WHERE secret_hash = ?)");
  if (!next(query.bind(hash))) return std::nullopt;
  return Access{.book = {query.integer(0), query.text(1)}, .person = query.text(2)};
}

std::vector<ListedBook> Directory::list() const {
  Statement query(*database_, R"(
    SELECT books.name, people.name, devices.name, added FROM books
      LEFT JOIN people ON people.book = books.number
      LEFT JOIN devices ON devices.person = people.number
    ORDER BY lower(books.name), lower(people.name), lower(devices.name))");
  std::vector<ListedBook> books;
  while (next(query)) {
    const std::string book = query.text(0);
    if (books.empty() || books.back().name != book) books.push_back({.name = book, .people = {}});
    if (query.isNull(1)) continue;
    auto& people = books.back().people;
    const std::string person = query.text(1);
    if (people.empty() || people.back().name != person) {
      people.push_back({.name = person, .devices = {}});
    }
    if (query.isNull(2)) continue;
    people.back().devices.push_back({query.text(2), money::Day::fromText(query.text(3))});
  }
  return books;
}

std::string Directory::publicUrl() const {
  Statement query(*database_, "SELECT value FROM settings WHERE name = 'public_url'");
  return next(query) ? query.text(0) : "";
}

void Directory::keepPublicUrl(const std::string& url) {
  if (publicUrl() == url) return;
  try {
    database_->inTransaction([&] {
      Statement removal(*database_, "DELETE FROM settings WHERE name = 'public_url'");
      run(removal);
      Statement insertion(*database_,
                          "INSERT INTO settings (name, value) VALUES ('public_url', ?)");
      run(insertion.bind(url));
    });
  } catch (const Failure&) {  // unless another server kept the same at the same time
    if (publicUrl() != url) throw;
  }
}

}  // namespace kivo::server
