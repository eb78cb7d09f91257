// How the commands of kivo-ledger speak to the person.
#pragma once

#include <functional>
#include <string>

#include "ledger/book.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// The exit status of a command that could not do what it was asked for.
inline constexpr int exitFailure = 1;

/// Writes `what` as one line on standard error, after the program's name; returns `status`.
int fail(const std::string& what, int status = exitFailure);

/// Writes `text` on standard output as it is; returns 0, or `fail` when that cannot be done.
int print(const std::string& text);

/// Opens the book, hands it to `use` and returns what that returns; `exitFailure`, after one line
/// on standard error, when the book cannot be opened, read or written.
int withBook(const std::function<int(Book&)>& use, MessageReader reader = read);

/// As `withBook`, with the entry whose id was given as ID; `fail` when no entry has that id.
int withEntry(const linux_platform::GivenParameters& given,
              const std::function<int(Book&, const LedgerEntry&)>& use);

/// The currency that the book is kept in: the shared store's, in upper case, EGP when it holds
/// none. Absent, after one line on standard error, when the store cannot be opened.
std::optional<std::string> bookCurrency();

}  // namespace kivo::ledger
