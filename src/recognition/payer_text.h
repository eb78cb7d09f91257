// Finds the sums, outcomes and movements in a text that the payer wrote, such as "Remarks: ...".
// They are names by their place: they tell nothing about the payment.
#pragma once

#include <vector>

#include "recognition/capital_words.h"
#include "recognition/name_places.h"

namespace kivo::recognition {

/// Whether a text that the payer wrote follows `wording`.
bool introducesPayerText(const Found& wording);

/// The places in the sentence behind `wording`, which introduces the payer's text. Where nothing
/// but that text tells the direction, and it holds a sum, the end of a place is unclear, so that
/// both readings count.
std::vector<NamePlace> placesInPayerText(const AnalysedMessage& message, const CapitalWords& words,
                                         const Found& wording);

}  // namespace kivo::recognition
