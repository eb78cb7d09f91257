// Ignored messages as rows of their table. The functions throw BookFailure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "book/ignored_message.h"

namespace kivo::book {

class Database;

/// Inserts a row for a new message.
void insertIgnored(Database& database, const IgnoredMessage& message);

/// Return the messages of `first` and of later days that no command took, newest first, the one
/// with this number, and how many there are. A row whose values cannot be is left out, and the
/// first names it in a note of damage.
std::vector<IgnoredMessage> storedIgnored(Database& database, const money::Day& first);
std::optional<IgnoredMessage> storedIgnored(Database& database, std::int64_t number,
                                            const money::Day& first);
std::int64_t ignoredCount(Database& database, const money::Day& first);

/// Has the command `command` take the message `number`, whose row stays; returns false when it does
/// not exist or was taken.
bool takeIgnored(Database& database, std::int64_t number, std::int64_t command);
/// Deletes the row that a command took of this user and key.
void deleteTaken(Database& database, const std::string& userId, const std::string& key);

/// Delete rows, and return whether there were any: the one with this number, those before the day
/// `first`, those with the lowest numbers when there are more than the book keeps, and all. Their
/// bytes stay in the file until it is erased.
bool deleteIgnored(Database& database, std::int64_t number);
bool deleteIgnoredBefore(Database& database, const money::Day& first);
bool deleteSurplusIgnored(Database& database);
bool deleteAllIgnored(Database& database);

/// Returns whether there are rows, of whatever day.
bool hasIgnored(Database& database);

}  // namespace kivo::book
