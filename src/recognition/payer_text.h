// Finds the sums, outcomes and movements in a text that the payer wrote, such as "Remarks: ...".
// They are names by their place: they tell nothing about the payment.
#pragma once

#include <cstddef>
#include <vector>

#include "recognition/capital_words.h"
#include "recognition/name_places.h"

namespace kivo::recognition {

/// Whether a text that the payer wrote follows `wording` of `message`.
bool introducesPayerText(const AnalysedMessage& message, const Found& wording);

/// A text that the payer wrote.
struct PayerText {
  /// The item behind its last one.
  std::size_t end = 0;
  /// Its sums, outcomes and movements. Where nothing but the text tells the direction, and it holds
  /// a sum, their ends are unclear, so that both readings count.
  std::vector<NamePlace> places = {};
};

/// The text in the sentence behind `wording`, which introduces it.
PayerText payerTextBehind(const AnalysedMessage& message, const CapitalWords& words,
                          const Found& wording);

}  // namespace kivo::recognition
