// Finds the category of a payment by the payee's name: by known chains, and by words for kinds of
// shops.
#pragma once

#include <string_view>

namespace kivo::recognition {

/// The category of a payment to a shop of this name, as a message writes it; empty when neither the
/// name nor a word in it tells. Of "PAYPAL *SPOTIFY" the part behind the asterisk decides, unless
/// the part in front of it does. Thread-safe.
std::string_view merchantCategory(std::string_view name);

/// The category of a payment to a payee who may be a person: a chain counts only when the whole
/// name is its name, since names of people begin with "Oscar" and "Zara" too. Thread-safe.
std::string_view recipientCategory(std::string_view name);

/// Whether `word`, folded (names/name_fold.h), is a word for a kind of shop: "pharmacy", "مطعم".
/// Thread-safe.
bool isShopWord(std::string_view word);

}  // namespace kivo::recognition
