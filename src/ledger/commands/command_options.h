// Reads and checks the values of options of kivo-ledger's commands. Does not open the book.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "book/book.h"
#include "money/day.h"
#include "money/kind.h"
#include "money/money.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::ledger {

/// Returns the value given for `name`, as valid UTF-8; absent when none was given.
std::optional<std::string> given(const linux_platform::GivenParameters& parameters,
                                 const char* name);

/// Returns the command `name` with its arguments and options, as it may be typed, for the history
/// of the book. Leaves --yes out.
book::UserCommand userCommand(const std::string& name,
                              const linux_platform::GivenParameters& parameters);

/// Returns the failure to throw: the value given for `name` is invalid and must be `form`.
linux_platform::BadUsage invalid(const char* name, const std::string& value,
                                 const std::string& form);

/// As `given`. Throws BadUsage when the value is empty.
std::optional<std::string> givenText(const linux_platform::GivenParameters& parameters,
                                     const char* name);

/// The argument ID, which takes several ids and ranges.
linux_platform::CommandParameter idsParameter();

/// Returns the value of --kind; absent when it was not given. Throws `invalid`.
std::optional<money::Kind> givenKind(const linux_platform::GivenParameters& parameters);
/// Returns the kinds' names, for completion.
std::vector<std::string> kindNames();

/// Reads `text`, the value of `name`, as a sum in `currency` that can be booked. Throws `invalid`.
money::Money sumFrom(const std::string& text, const money::CurrencyCode& currency,
                     const char* name = "--amount");

/// Returns the value of --account, an account's digits; absent when it was not given. Throws
/// `invalid`.
std::optional<std::string> givenAccount(const linux_platform::GivenParameters& parameters);

/// Returns the day given for `name`; absent when none was given. Throws `invalid`.
std::optional<money::Day> givenDay(const linux_platform::GivenParameters& parameters,
                                   const char* name);

/// Returns the value of --month; absent when it was not given. Throws `invalid`.
std::optional<money::Month> givenMonth(const linux_platform::GivenParameters& parameters);

/// Returns the currency code given for `name`, in upper case; absent when none was given. Throws
/// `invalid`, with `example` as a valid code.
std::optional<money::CurrencyCode> givenCurrency(const linux_platform::GivenParameters& parameters,
                                                 const char* name, const std::string& example);

/// Returns the options --month, --from, --to, --category, --search, --kind, --account, --min and
/// --max.
std::vector<linux_platform::CommandParameter> filterOptions();

/// Reads `filterOptions`. --month together with --from or --to selects the days that satisfy both.
/// Throws `invalid`.
book::EntryFilter filterFrom(const linux_platform::GivenParameters& parameters);

}  // namespace kivo::ledger
