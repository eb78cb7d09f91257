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

}  // namespace kivo::recognition
