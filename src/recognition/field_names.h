// Finds names that fill a field or line of a message, known by their capitals, or stand in quotes.
#pragma once

#include <vector>

#include "recognition/capital_words.h"
#include "recognition/name_places.h"

namespace kivo::recognition {

/// The names between marks, sums or line breaks of `message`, beside which another wording reports
/// a movement: "AED 415.00 - Available Light Photo - 12/11". In order.
std::vector<NamePlace> fieldNames(const AnalysedMessage& message, const CapitalWords& words);

/// The texts between quotes on one line of `message`, of some words. In order.
std::vector<NamePlace> quotedNames(const AnalysedMessage& message);

/// The name of the bank in front of the report, when it holds a wording: "Credit Garrigue - ...".
std::vector<NamePlace> bankNames(const AnalysedMessage& message, const CapitalWords& words);

/// The names in brackets behind a sum, in scripts without blanks: "支付28.00元（退款咖啡）".
std::vector<NamePlace> bracketedNames(const AnalysedMessage& message, const CapitalWords& words);

}  // namespace kivo::recognition
