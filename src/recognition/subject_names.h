// Finds the names in front of the wordings whose subject they are: "Will Smith sent you".
#pragma once

#include <vector>

#include "recognition/capital_words.h"
#include "recognition/name_places.h"

namespace kivo::recognition {

/// The names in front of "sent you", "credited" and the like, in order.
std::vector<NamePlace> subjectNames(const AnalysedMessage& message, const CapitalWords& words);

}  // namespace kivo::recognition
