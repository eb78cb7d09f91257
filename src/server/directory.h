// Who may reach which book: the books, people and devices of a server. Knows no payment.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "money/day.h"
#include "money/money.h"
#include "server/shelf.h"

namespace kivo::server {

/// A book, by the number that its shelf knows.
struct BookPlace {
  std::int64_t number = 0;
  std::string name;
};

/// What a device may reach: one book, as one person.
struct Access {
  BookPlace book;
  std::string person;
};

struct ListedDevice {
  std::string name;
  /// Absent when a damaged file holds none.
  std::optional<money::Day> added;
};

struct ListedPerson {
  std::string name;
  std::vector<ListedDevice> devices;
};

struct ListedBook {
  std::string name;
  std::vector<ListedPerson> people;
};

/// The directory of a shelf. Other processes may use it: each call sees what they changed. Names
/// match in either case of ASCII letters. A change is durable when the call returns. Every call
/// throws Failure, with a sentence for the user, when it cannot be read or written, and has then
/// changed nothing. Not thread-safe.
class Directory {
 public:
  /// `shelf` must outlive it.
  explicit Directory(Shelf& shelf);

  /// Adds an empty book kept in `currency`. Throws Failure when `name` is no name or another book
  /// has it.
  void addBook(const std::string& name, const money::CurrencyCode& currency);
  /// Adds a person of the book `book`. Throws Failure when `name` is no name, another person of the
  /// server has it, or there is no such book.
  void addPerson(const std::string& name, const std::string& book);
  /// Adds a device of `person` and returns its secret, of which only a hash is kept. Throws Failure
  /// when `name` is no name, the person has such a device, or there is no such person.
  std::string addDevice(const std::string& person, const std::string& name);
  /// Removes the device `name`, of `person` if that is not empty. Throws Failure when there is
  /// none, and when several people have one of this name and `person` is empty.
  void revokeDevice(const std::string& name, const std::string& person);
  /// Removes the devices of `person`, calls `erase`, and removes `person`. Throws Failure when
  /// there is no such person. Lets what `erase` throws through; the person stays then, without
  /// devices.
  void removePerson(const std::string& person,
                    const std::function<void(const Access& person)>& erase);

  /// Returns the book `name`. Throws Failure when there is none.
  [[nodiscard]] BookPlace book(const std::string& name) const;
  /// Returns what `person` may reach. Throws Failure when there is no such person.
  [[nodiscard]] Access accessOf(const std::string& person) const;
  /// Returns what the device with `secret` may reach; nullopt when no device has it. A wrong secret
  /// and a revoked one take the same steps.
  [[nodiscard]] std::optional<Access> access(std::string_view secret) const;
  /// Returns all books, people and devices, by their names.
  [[nodiscard]] std::vector<ListedBook> list() const;

  /// The address at which devices reach the server, without a slash at its end; empty until one was
  /// kept.
  [[nodiscard]] std::string publicUrl() const;
  void keepPublicUrl(const std::string& url);

 private:
  Shelf& shelf_;
  std::unique_ptr<book::Database> database_;
};

}  // namespace kivo::server
