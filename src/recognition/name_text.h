// The text of a name between two places of a message. Does not look for the places.
#pragma once

#include <string>
#include <string_view>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The name that items `begin` to `end` (excluded) of `message` write; empty when they are only
/// numbers, masks and words such as "transfer" or "UPI".
std::string nameBetween(const AnalysedMessage& message, std::size_t begin, std::size_t end);

/// The piece of a narration such as "UPI/CR/42494/MEERA NAIR/Y" that is a name; empty when no piece
/// is.
std::string nameInNarration(const AnalysedMessage& message, std::size_t begin, std::size_t end);

/// Whether `word` names the channel of a payment in a narration, such as "upi" or "pos".
bool isChannelWord(std::string_view word);

/// `name` on one line, without quotes, blanks and marks around it, 60 bytes at most.
std::string shownPayee(std::string_view name);

}  // namespace kivo::recognition
