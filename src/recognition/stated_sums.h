// Finds the sums in a message: amounts with their currencies. Does not decide which of them moved.
#pragma once

#include <string_view>

#include "recognition/message_items.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// `items` with each amount and the currency beside it joined to one item, and with the numbers
/// that are not amounts marked as pieces (number_pieces.h). A number without a currency becomes a
/// sum when it has decimals or follows a wording for an amount. An ambiguous currency is
/// `bookCurrency` if it may mean that.
Items withSums(Items items, std::string_view bookCurrency,
               const Wordings& wordings = Wordings::all());

}  // namespace kivo::recognition
