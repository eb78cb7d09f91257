// Says what a gap between two balances is, and when a balance was stated.
#pragma once

#include <string>

#include "money/currency_code.h"
#include "money/day.h"
#include "overview/balance_chain.h"

namespace kivo::overview {

/// Returns the day in words, with the year unless that is the year of `today`: "3 November".
std::string dayWords(const money::Day& day, const money::Day& today);

/// Returns "EGP 500.00 unexplained between 3 and 5 November", of a gap in `currency`.
std::string gapWords(const Gap& gap, const money::CurrencyCode& currency, const money::Day& today);

}  // namespace kivo::overview
