// Cuts a payee's name from the items that hold it, and shortens it. Does not look for the items.
#pragma once

#include <string>
#include <string_view>

#include "recognition/analysed_message.h"

namespace kivo::recognition {

/// The name in the items [`begin`, `end`) of `message`; empty when they are only numbers, masks and
/// words such as "transfer" or "UPI".
std::string nameBetween(const AnalysedMessage& message, std::size_t begin, std::size_t end);

/// The first name in a narration such as "UPI/CR/42494/MEERA NAIR/Y", the items [`begin`, `end`) of
/// `message`; empty without one.
std::string nameInNarration(const AnalysedMessage& message, std::size_t begin, std::size_t end);

/// Whether `word` names the channel of a payment in a narration, such as "upi" or "pos".
bool isChannelWord(std::string_view word);

/// Whether `word` is a channel word that also begins names: "Card Factory", "Pay Less Shoes".
bool isOrdinaryWord(std::string_view word);

/// Whether `word` begins the name of a channel without a place: "Online Banking", "app".
bool isRemoteChannel(std::string_view word);

/// Whether `word` addresses somebody, such as "you" or "dear".
bool isPronoun(std::string_view word);

/// `name` on one line, without quotes, blanks and marks around it, 60 bytes at most.
std::string shownPayee(std::string_view name);

/// Whether a word for a fee is among the items from `begin` to `end`, or is item `end`: "SMS &
/// maintenance charge".
bool namesFee(const Items& items, std::size_t begin, std::size_t end);

/// Whether the items [`begin`, `end`) end with a loan and its code: "EMI of Home Loan HL 4410".
bool namesLoan(const Items& items, std::size_t begin, std::size_t end);

}  // namespace kivo::recognition
