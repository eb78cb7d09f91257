// Finds the shop chain whose name a payee's name begins with.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace kivo::recognition {

/// A chain at the front of a payee's name.
struct Chain {
  /// The number of words that make up the chain's name; 0 when no chain was found.
  std::size_t words = 0;
  /// The category of a payment to it; empty when no chain was found.
  std::string_view category = {};
};

/// The chain with the longest name that `words` (a payee's name by `names::foldedWords`) begin
/// with.
Chain chainIn(std::span<const std::string> words);

}  // namespace kivo::recognition
