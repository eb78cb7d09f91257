#include "recognition/split_numbers.h"

#include <algorithm>

#include "recognition/number_pieces.h"

namespace kivo::recognition {
namespace {

constexpr std::size_t group = 3;

// False for a place outside of `items`, such as the one in front of the first.
bool isNumber(const Items& items, std::size_t at) {
  return at < items.size() && items[at].kind == Item::Kind::number;
}

// The number of digits before the first separator.
std::size_t wholeDigits(const Item& number) {
  return std::min(number.text.find_first_not_of("0123456789"), number.text.size());
}

bool hasDecimals(const Item& number) {
  const std::size_t separator = number.text.find_last_of(".,");
  return separator != std::string::npos && number.text.size() - separator <= group;
}

// Whether the number at `next` may continue the one at `first` behind a blank.
bool mayContinue(const Items& items, std::size_t first, std::size_t next) {
  constexpr std::size_t widestBlank = 3;  // bytes
  if (!isNumber(items, first) || !isNumber(items, next) || items[next].glued) return false;
  if (items[next].begin - items[next - 1].end > widestBlank) return false;
  return !hasDecimals(items[first]) && wholeDigits(items[next]) <= group;
}

// Whether a comma and a blank separate the number at `next` from the one before, and it is as long
// as a group of thousands.
bool isGroupBehindComma(const Items& items, std::size_t next) {
  return next > 1 && isNumber(items, next) && wholeDigits(items[next]) == group &&
         items[next - 1].glued && isMark(items[next - 1], ",");
}

// Whether a mark joins two numbers that are not parts of a date or time: "500-1000", "1/000".
bool isJoined(const Items& items, std::size_t first, std::size_t next) {
  if (!isNumber(items, first) || !isNumber(items, next)) return false;
  return isMark(items[next - 1], "-/:") && items[next - 1].glued && items[next].glued &&
         !isDatePiece(items, first) && !isDatePiece(items, next);
}

// Whether letters stand in the place of zeros behind the number: "25,OOO".
bool hasLettersForZeros(const Items& items, std::size_t last) {
  return last + 2 < items.size() && isMark(items[last + 1], ",") && items[last + 1].glued &&
         items[last + 2].glued && items[last + 2].kind == Item::Kind::word &&
         items[last + 2].text.find_first_not_of('o') == std::string::npos;
}

}  // namespace

bool followsGroup(const Items& items, std::size_t number) {
  const std::size_t back = isGroupBehindComma(items, number) ? 2 : 1;
  if (number < back) return false;
  const Item& before = items[number - back];
  return mayContinue(items, number - back, number) && !before.isPiece &&
         before.text.size() <= group;
}

bool isPartOfNumber(const Items& items, std::size_t number, std::size_t last) {
  if (isJoined(items, number - 2, number)) return true;
  if (isJoined(items, last, last + 2) || hasLettersForZeros(items, last)) return true;
  const std::size_t next = isGroupBehindComma(items, last + 2) ? last + 2 : last + 1;
  return mayContinue(items, last, next) && !items[next].isPiece;
}

}  // namespace kivo::recognition
