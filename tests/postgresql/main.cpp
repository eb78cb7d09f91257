// The tests of the book, on PostgreSQL.
#include <iostream>
#include <sstream>

#include <gmock/gmock.h>
#include <libpq-fe.h>

#include "book_postgresql/postgres_book.h"
#include "book_postgresql/postgres_sql.h"
#include "book_postgresql/postgres_tables.h"
#include "platform/linux/foundation/device_folders.h"
#include "postgresql/fresh_books.h"
#include "testkit/raw_book.h"
#include "unit/server/opened_shelf.h"

namespace kivo::testkit {

using book_postgresql::PostgresConnection;

namespace {

FreshBooks* running = nullptr;

}  // namespace

FreshBooks::FreshBooks() : books_([this] { return open(); }) {
  running = this;
  server::shelfDatabase = [this] { return shelfUrl(); };
  rawBook = [this](const std::string& sql) { return runRaw(sql); };
}

PrivatePostgres& FreshBooks::cluster() { return running->cluster_; }

std::shared_ptr<PostgresConnection> FreshBooks::connected() {
  auto connection = std::make_shared<PostgresConnection>(cluster_.url());
  if (numbers_.empty()) book_postgresql::createTables(*connection);
  return connection;
}

std::int64_t FreshBooks::number(PostgresConnection& connection) {
  const std::string folder = linux_platform::dataHome()->string();
  auto known = numbers_.find(folder);
  if (known == numbers_.end()) {
    const auto added = connection.run("INSERT INTO kivo.books (name) VALUES ($1) RETURNING number",
                                      {{folder, false}});
    const std::int64_t number = std::stoll(std::string(valueOf(added, 0, 0)));
    book_postgresql::addBookTables(connection, number);
    known = numbers_.emplace(folder, number).first;
  }
  return known->second;
}

std::unique_ptr<book::Database> FreshBooks::open() {
  auto connection = connected();
  const std::int64_t chosen = number(*connection);
  return book_postgresql::openBook(std::move(connection), chosen);
}

// Copied from a template, since making the tables takes longer than most tests.
std::string FreshBooks::shelfUrl() {
  PostgresConnection connection(cluster_.url());
  if (shelves_.empty()) {
    connection.run("CREATE DATABASE made");
    PostgresConnection made(cluster_.url("made"));
    book_postgresql::createTables(made);
  }
  const std::string name = "server" + std::to_string(shelves_.size());
  const auto [known, isNew] = shelves_.try_emplace(linux_platform::dataHome()->string(), name);
  if (isNew) connection.run("CREATE DATABASE " + name + " TEMPLATE made");
  return cluster_.url(known->second);
}

std::string FreshBooks::runRaw(const std::string& sql) {
  const auto connection = connected();
  connection->useBook(number(*connection));
  std::string rows;
  std::istringstream statements(sql);
  for (std::string statement; std::getline(statements, statement, ';');) {
    const auto result = connection->run(book_postgresql::postgresSql(statement), {});
    for (int row = 0; row < PQntuples(result.get()); ++row) {
      for (int column = 0; column < PQnfields(result.get()); ++column) {
        rows += (column == 0 ? "" : "|") + std::string(valueOf(result, row, column));
      }
      rows += "\n";
    }
  }
  return rows;
}

}  // namespace kivo::testkit

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  try {
    const kivo::testkit::FreshBooks books;
    return RUN_ALL_TESTS();
  } catch (const std::exception& failure) {
    std::cerr << "PostgreSQL cannot be started: " << failure.what() << "\n";
    return 1;
  }
}
