// Where the books of a server stand: files, or PostgreSQL. Knows no person.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "book/database.h"
#include "money/money.h"

namespace kivo::server {

/// The books of a server by their numbers, and the tables that say who may reach them. Every call
/// throws Failure with a sentence for the user when they cannot be read or written. Not
/// thread-safe.
class Shelf {
 public:
  Shelf() = default;
  virtual ~Shelf() = default;
  Shelf(const Shelf&) = delete;
  Shelf& operator=(const Shelf&) = delete;

  /// Opens the shelf of files in `dataHome`, or that in PostgreSQL when `database` is not empty:
  /// its connection URI, without a password. Creates what is missing.
  static std::unique_ptr<Shelf> open(const std::string& database);

  /// Returns the tables `books`, `people`, `devices` and `settings` of `Directory`. They must not
  /// outlive this shelf.
  virtual std::unique_ptr<book::Database> directory() = 0;

  /// Makes the empty book `number`, kept in `currency`, in the transaction that adds its row.
  virtual void addBook(std::int64_t number, const money::CurrencyCode& currency) = 0;

  /// Whether what is called in a book may change its settings: currency, templates, senders.
  enum class Settings { stay, mayChange };
  /// Calls `use` while `book::Book::open` opens the book `number`, and the files of settings are
  /// its own. Lets what it throws through.
  virtual void inBook(std::int64_t number, Settings settings, const std::function<void()>& use) = 0;

  /// Returns the currency of the book `number`, which is used by `inBook`; nullopt, after one line
  /// on standard error, when it cannot be read.
  virtual std::optional<money::CurrencyCode> currency(std::int64_t number) = 0;
};

}  // namespace kivo::server
