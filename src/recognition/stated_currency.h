// Finds the currencies that a message writes beside its numbers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "recognition/message_items.h"

namespace kivo::recognition {

/// A currency's sign or word in a message, as places among its items.
struct StatedCurrency {
  std::size_t begin = 0;
  std::size_t end = 0;
  /// The codes of the currencies that it may mean, the likeliest first, separated by blanks.
  std::string codes;

  [[nodiscard]] bool mayBe(std::string_view code) const;
  /// `book` if it may mean that, else the likeliest.
  [[nodiscard]] std::string resolvedFor(std::string_view book) const;
};

/// The longest currency word that ends in front of item `end` and does not begin before `taken`,
/// for the number at `number`. A word of one or two letters counts only if it may mean the book's
/// currency; common ones such as "Rs" and "kr" always count.
std::optional<StatedCurrency> currencyBefore(const Items& items, std::size_t end, std::size_t taken,
                                             std::size_t number, std::string_view book);

/// The longest currency word that begins at item `begin`, as above.
std::optional<StatedCurrency> currencyAt(const Items& items, std::size_t begin, std::size_t number,
                                         std::string_view book);

/// Whether `codes`, separated by blanks, hold `code`.
bool holdsCode(std::string_view codes, std::string_view code);

}  // namespace kivo::recognition
