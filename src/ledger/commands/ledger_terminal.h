// Output, errors, and access to the book for the commands of kivo-ledger.
#pragma once

#include <functional>
#include <string>

#include "book/book.h"
#include "ledger/book_currency.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// The exit status of a command that failed.
inline constexpr int exitFailure = 1;

/// Prints `what` as one line on standard error, after the program's name. Returns `status`.
int fail(const std::string& what, int status = exitFailure);

/// Writes `text` unchanged to standard output. Returns 0, or as `fail` when that fails.
int print(const std::string& text);

/// Opens the book, calls `use` with it and returns its result; `exitFailure`, after one line on
/// standard error, when the book cannot be opened, read or written.
int withBook(const std::function<int(book::Book&)>& use);

/// As `withBook`, with the entry whose id was given as ID. Returns as `fail` when ID is not a
/// number, with the exit status for bad usage, and when no entry has that id.
int withEntry(const linux_platform::GivenParameters& given,
              const std::function<int(book::Book&, const book::LedgerEntry&)>& use);

/// Prints a line on standard error that names the entries of `book` that are set aside, if any.
void tellSetAside(const book::Book& book);

}  // namespace kivo::ledger
