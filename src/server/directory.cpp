#include "server/directory.h"

#include <array>
#include <system_error>
#include <utility>

#include "book/book_file.h"
#include "book/current_day.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/opening_failure.h"
#include "server/device_secret.h"

namespace kivo::server {

using book::next;
using book::run;
using linux_platform::Failure;
using linux_platform::Statement;

namespace {

// A person's name is the user of the messages that the person's devices send, so it is unique on
// the server.
constexpr std::array versions = {linux_platform::DatabaseVersion{R"(
CREATE TABLE books (
  number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE COLLATE NOCASE
) STRICT;
CREATE TABLE people (
  number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE COLLATE NOCASE,
  book INTEGER NOT NULL REFERENCES books (number)
) STRICT;
CREATE TABLE devices (
  number INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL COLLATE NOCASE,
  person INTEGER NOT NULL REFERENCES people (number), added TEXT NOT NULL,
  secret_hash TEXT NOT NULL UNIQUE, UNIQUE (person, name)
) STRICT;
CREATE TABLE settings (name TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL) STRICT)"}};

constexpr std::int64_t applicationId = 0x4B765376;  // "KvSv" in ASCII

constexpr linux_platform::DatabaseForm form = {"app.kivo.server", "server.sqlite3", applicationId,
                                               versions};

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

std::optional<std::int64_t> numberIn(sqlite3* database, const char* sql, const std::string& name) {
  Statement query(database, sql);
  if (!next(query.bind(name))) return std::nullopt;
  return query.integer(0);
}

std::int64_t requiredPerson(sqlite3* database, const std::string& name) {
  const auto number = numberIn(database, "SELECT number FROM people WHERE name = ?", name);
  if (!number) throw Failure("there is no person " + quoted(name) + "; kivo-server list shows all");
  return *number;
}

// Runs a statement that adds a row which must be the only one of its name.
void add(Statement& insertion, const std::string& taken) {
  if (insertion.run()) return;
  constexpr int constraint = 19;  // SQLITE_CONSTRAINT
  if ((insertion.code() & 0xFF) == constraint) throw Failure(taken);
  book::require(insertion.code());
}

}  // namespace

Directory::Directory(linux_platform::Database database) : database_(std::move(database)) {}

Directory Directory::open() {
  try {
    return Directory(linux_platform::openDatabase(form));
  } catch (const linux_platform::OpeningFailure& failure) {
    throw Failure(std::string("the list of people and devices: ") + failure.what());
  }
}

std::filesystem::path Directory::folderOf(std::int64_t book) const {
  return linux_platform::fileOf(database_.get()).parent_path() / "books" / std::to_string(book);
}

void Directory::addBook(const std::string& name,
                        const std::function<void(const std::filesystem::path& folder)>& fill) {
  requireName("a book", name);
  book::WriteTransaction transaction(database_.get());
  Statement insertion(database_.get(), "INSERT INTO books (name) VALUES (?)");
  add(insertion.bind(name), "there is a book " + quoted(name) + " already");
  const std::int64_t number = book(name).number;
  std::error_code error;
  // Left by a call that ended before its commit.
  std::filesystem::remove_all(folderOf(number), error);
  std::filesystem::create_directories(folderOf(number) / "data", error);
  if (error) throw Failure("the folder of the book cannot be made: " + error.message());
  fill(folderOf(number));
  transaction.commit();
}

void Directory::addPerson(const std::string& name, const std::string& book) {
  requireName("a person", name);
  const std::int64_t number = this->book(book).number;
  Statement insertion(database_.get(), "INSERT INTO people (name, book) VALUES (?, ?)");
  add(insertion.bind(name).bind(number), "there is a person " + quoted(name) + " already");
}

std::string Directory::addDevice(const std::string& person, const std::string& name) {
  requireName("a device", name);
  const std::int64_t number = requiredPerson(database_.get(), person);
  std::string secret = DeviceSecret::make();
  const std::string hash = DeviceSecret::hash(secret);
  const std::string today = book::currentDay().text();
  Statement insertion(database_.get(),
                      "INSERT INTO devices (name, person, added, secret_hash) VALUES (?, ?, ?, ?)");
  add(insertion.bind(name).bind(number).bind(today).bind(hash),
      person + " has a device " + quoted(name) +
          " already; revoke it first, or choose another name");
  return secret;
}

void Directory::revokeDevice(const std::string& name, const std::string& person) {
  book::WriteTransaction transaction(database_.get());
  Statement query(database_.get(), R"(
    SELECT devices.number, people.name FROM devices JOIN people ON people.number = person
    WHERE devices.name = ?1 AND (?2 = '' OR people.name = ?2) ORDER BY people.name)");
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
  Statement removal(database_.get(), "DELETE FROM devices WHERE number = ?");
  run(removal.bind(found.front()));
  transaction.commit();
}

void Directory::removePerson(const std::string& person,
                             const std::function<void(const Access& person)>& erase) {
  const Access access = accessOf(person);
  const std::int64_t number = requiredPerson(database_.get(), person);
  // First the devices, so that no message comes after the erasure.
  Statement revocation(database_.get(), "DELETE FROM devices WHERE person = ?");
  run(revocation.bind(number));
  erase(access);
  Statement removal(database_.get(), "DELETE FROM people WHERE number = ?");
  run(removal.bind(number));
}

BookPlace Directory::book(const std::string& name) const {
  Statement query(database_.get(), "SELECT number, name FROM books WHERE name = ?");
  if (!next(query.bind(name))) {
    throw Failure("there is no book " + quoted(name) + "; kivo-server list shows all");
  }
  return {query.integer(0), query.text(1), folderOf(query.integer(0))};
}

Access Directory::accessOf(const std::string& person) const {
  requiredPerson(database_.get(), person);
  Statement query(database_.get(), R"(
    SELECT people.name, books.name FROM people JOIN books ON books.number = book
    WHERE people.name = ?)");
  if (!next(query.bind(person))) throw Failure("the book of " + quoted(person) + " is missing");
  return {.book = book(query.text(1)), .person = query.text(0)};
}

std::optional<Access> Directory::access(std::string_view secret) const {
  const std::string hash = DeviceSecret::hash(secret);
  Statement query(database_.get(), R"(
    SELECT books.number, books.name, people.name FROM devices
      JOIN people ON people.number = person JOIN books ON books.number = book
    WHERE secret_hash = ?)");
  if (!next(query.bind(hash))) return std::nullopt;
  const std::int64_t number = query.integer(0);
  return Access{.book = {number, query.text(1), folderOf(number)}, .person = query.text(2)};
}

std::vector<ListedBook> Directory::list() const {
  Statement query(database_.get(), R"(
    SELECT books.name, people.name, devices.name, added FROM books
      LEFT JOIN people ON people.book = books.number
      LEFT JOIN devices ON devices.person = people.number
    ORDER BY books.name, people.name, devices.name)");
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
  Statement query(database_.get(), "SELECT value FROM settings WHERE name = 'public_url'");
  return next(query) ? query.text(0) : "";
}

void Directory::keepPublicUrl(const std::string& url) {
  if (publicUrl() == url) return;
  Statement upsert(database_.get(), "INSERT OR REPLACE INTO settings VALUES ('public_url', ?)");
  run(upsert.bind(url));
}

}  // namespace kivo::server
