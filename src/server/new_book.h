// The first files of a book of the server. Knows no person.
#pragma once

#include "money/money.h"

namespace kivo::server {

/// Makes an empty book kept in `currency` in the folders of the moment. Throws Failure, or
/// ReportedFailure after one line on standard error.
void makeNewBook(const money::CurrencyCode& currency);

}  // namespace kivo::server
