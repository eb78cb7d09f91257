// The sums of money in a message: numbers with their currencies. Does not say which of them moved.
#pragma once

#include <string_view>

#include "recognition/message_items.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// `items` with each number and the currency beside it joined to one sum item, and with the numbers
/// of dates, times of day, account masks and the like marked as pieces. A number without a currency
/// becomes a sum when it has decimals or follows a word for an amount, by `wordings`. An ambiguous
/// currency is `bookCurrency` where it may mean that.
Items withSums(Items items, std::string_view bookCurrency,
               const Wordings& wordings = Wordings::all());

}  // namespace kivo::recognition
