// A bank message cut into words, numbers and marks. Gives them no meaning.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::recognition {

/// An amount with its currency, as far as both can be read.
struct Sum {
  /// Minor units, without sign; absent when the amount can be read in more than one way.
  std::optional<std::int64_t> minorUnits;
  /// An ISO 4217 code; empty where the message names no currency beside the amount.
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
  /// A word: folded (names/name_fold.h), never empty. A number or sum: the amount, with all that
  /// changes its value ("1e3", "5²"). A mark: itself. A line break: empty.
  std::string text = {};
  /// No blank is between it and the item before.
  bool glued = false;
  /// A word in capitals only, even of one letter.
  bool capitals = false;
  /// The first item of a sentence or line.
  bool startsSentence = false;
  /// A number within a date, a time of day, a masked number or another word.
  bool isPiece = false;
  /// It stands where a name stands (name_places.h): part of no wording.
  bool named = false;
  /// Set for a sum.
  Sum sum = {};
};

using Items = std::vector<Item>;

/// Whether `item` is a single capital.
bool isInitial(const Item& item);
/// Whether `item` is a payment or mail address: "lotus@upi".
bool isAddress(const Item& item);

/// Whether `item` is one of the ASCII `marks`.
bool isMark(const Item& item, std::string_view marks);

/// Whether `word` is a character of Chinese, Korean or Thai, each of which is an item: blanks do
/// not tell where a word or its ending begins.
bool isUnspaced(std::string_view word);

/// Whether the character at `at` of `readable` is the first of a number such as ".93": a point that
/// does not belong to a word or number before it.
bool beginsFraction(std::string_view readable, std::size_t at);

/// The items of `readable` (spelling.h), in order. Blanks are not items.
Items itemsOf(std::string_view readable);

}  // namespace kivo::recognition
