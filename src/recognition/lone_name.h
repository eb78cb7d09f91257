// Finds a payee's name that no words such as "at" or "to" introduce, by its capitals or the marks
// around it.
#pragma once

#include <cstddef>
#include <string>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The first name between the first sum and item `end`: preferably one in capitals, then one that
/// fills a line or the space between two marks; empty without one. Banks sign at the end of a
/// message: its last words are a name only when they are capitals directly behind the sum.
std::string loneName(const AnalysedMessage& message, std::size_t end);

/// The name directly in front of the first sum: "Debit order FITCLUB R899.00", "FERN MART: -18,35
/// EUR". Empty without one.
std::string nameBeforeSum(const AnalysedMessage& message);

/// Whether item `at` is a word that begins with a capital or with a letter of several bytes.
bool beginsLikeAName(const AnalysedMessage& message, std::size_t at);

}  // namespace kivo::recognition
