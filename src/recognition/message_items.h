// A bank message cut into words, numbers and marks. Gives them no meaning.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::recognition {

/// A number with its currency, as far as both can be read.
struct Sum {
  /// Minor units, without sign; absent when the digits can be read in more than one way.
  std::optional<std::int64_t> minorUnits;
  /// An ISO 4217 code; empty where the message names no currency beside the number.
  std::string currency;
  /// '-' or '+' where one is written in front, else NUL.
  char sign = '\0';
};

/// A piece of a message.
struct Item {
  enum class Kind { word, number, sum, mark, lineBreak };

  Kind kind = Kind::word;
  /// Its place in the readable form.
  std::size_t begin = 0;
  std::size_t end = 0;
  /// The folded word (names/name_fold.h), not empty, the digits with their separators and with what
  /// changes their value ("1e3", "5²"), or the mark.
  std::string text = {};
  /// No blank separates it from the item before.
  bool glued = false;
  /// A word of capitals only; it may have one letter.
  bool capitals = false;
  /// The first item of a sentence or line.
  bool startsSentence = false;
  /// A number within a date, a time of day, a masked number or another word.
  bool isPiece = false;
  /// Of a sum.
  Sum sum = {};
};

using Items = std::vector<Item>;

/// Whether `item` is one of the ASCII `marks`.
bool isMark(const Item& item, std::string_view marks);

/// Whether the character at `at` of `readable` is a point that begins a number such as ".93": it
/// belongs to no word or number before.
bool beginsFraction(std::string_view readable, std::size_t at);

/// The items of `readable` (spelling.h), in order. Blanks separate and are no items.
Items itemsOf(std::string_view readable);

}  // namespace kivo::recognition
