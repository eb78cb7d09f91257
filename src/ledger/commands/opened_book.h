// Opens the book for the commands of kivo-ledger.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "book/book.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Opens the book and calls `use` with it. Throws BookFailure when the book cannot be opened, and
/// ReportedFailure, after one line on standard error, when it cannot be read or written. Lets the
/// other exceptions of `use` through.
void withBook(const std::function<void(book::Book&)>& use);

/// As `withBook`, with the entry whose id was given as ID. Throws CommandFailure when ID is not a
/// number, with the exit status for bad usage, and when no entry has that id.
void withEntry(const linux_platform::GivenParameters& given,
               const std::function<void(book::Book&, const book::LedgerEntry&)>& use);

/// Returns the entries whose ids and ranges of ids were given as ID, each once, in the order of the
/// ids. Of a range, ids that no entry has are left out. Throws BadUsage when ID is not valid, and
/// CommandFailure when no entry has an id that stands alone, or one of a range.
std::vector<book::LedgerEntry> chosenEntries(const book::Book& book,
                                             const linux_platform::GivenParameters& given);

/// Calls `change` with each of `entries` of `book`, in one step. Lets its exceptions through; of
/// several entries, a CommandFailure names the entry.
void changeEach(book::Book& book, const std::vector<book::LedgerEntry>& entries,
                const std::function<void(const book::LedgerEntry&)>& change);

/// Returns the ignored message `number`. Throws CommandFailure when it does not exist.
book::IgnoredMessage requiredIgnored(const book::Book& book, std::int64_t number);

/// As `recording::bookCurrency`. Throws ReportedFailure, after one line on standard error, when the
/// shared store cannot be opened.
money::CurrencyCode requiredBookCurrency();

/// The option that says whose payments are added, where a book has those of several people. The
/// program that has such books adds it to the commands, and sees that it names one of the book.
constexpr const char* personOption = "--person";

/// Returns the user whose payments are added and compared with each other: the one given by
/// `personOption`, else the one that is signed in, "local" when none is. Throws as
/// `requiredBookCurrency` does.
std::string givenUser(const linux_platform::GivenParameters& given);

/// Prints a line on standard error that names the entries of `book` that are set aside, if any.
void tellSetAside(const book::Book& book);

}  // namespace kivo::ledger
