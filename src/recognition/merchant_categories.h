// The category of a payment by the payee's name: chains that are known, and words for kinds of
// shop.
#pragma once

#include <string_view>

namespace kivo::recognition {

/// The category of a payment to a shop of this name, as a message writes it; empty when neither the
/// name nor a word in it tells. "PAYPAL *SPOTIFY" is the name behind the asterisk where the one in
/// front of it is of no known shop. Thread-safe.
std::string_view merchantCategory(std::string_view name);

/// The same for a name that a person can have as well: a chain counts only by its whole name, since
/// "Oscar" and "Zara" begin names of people.
std::string_view recipientCategory(std::string_view name);

}  // namespace kivo::recognition
