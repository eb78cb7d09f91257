// A payee's name that no words introduce, found by its capitals or the marks around it. Does not
// look for "at", "to" and the like.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "recognition/message_items.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// Returns the first name after the first sum, preferably one in capitals; empty without one.
/// `found` are the wordings of `items`, the items of `readable`. Banks sign at the end of a
/// message: the last words are a name only when they are capitals directly behind the sum.
std::string loneName(std::string_view readable, const Items& items, std::span<const Found> found);

/// Whether `item` is a word that begins with a capital or with a letter of several bytes.
bool beginsLikeAName(std::string_view readable, const Item& item);

}  // namespace kivo::recognition
