// Finds names whose words are wordings where capitals do not show them: in scripts without
// capitals, and in messages in capitals.
#pragma once

#include <cstddef>
#include <vector>

#include "recognition/capital_words.h"
#include "recognition/name_places.h"

namespace kivo::recognition {

/// The wordings that are part of the name that begins with item `begin` of `message`, behind
/// `introduction`: "DENIED" of "AT DENIED JEANS", "المرفوض" of "لدى مقهى المرفوض". In order.
std::vector<NamePlace> uncasedNameBehind(const AnalysedMessage& message, const CapitalWords& words,
                                         const Found& introduction, std::size_t begin);

}  // namespace kivo::recognition
