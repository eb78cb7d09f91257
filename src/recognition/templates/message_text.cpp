#include "recognition/templates/message_text.h"

#include "recognition/message_items.h"
#include "recognition/spelling.h"

namespace kivo::recognition {
namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view separators = ".,'";
// Longer than any amount.
constexpr std::size_t longestNumber = 64;

bool isDigit(std::string_view text, std::size_t at) {
  return at < text.size() && digits.find(text[at]) != std::string_view::npos;
}

bool isSeparator(std::string_view text, std::size_t at) {
  return at < text.size() && separators.find(text[at]) != std::string_view::npos;
}

bool beginsNumber(std::string_view text, std::size_t at) {
  if (beginsFraction(text, at)) return true;
  if (!isDigit(text, at)) return false;
  if (at > 0 && (isDigit(text, at - 1) || beginsFraction(text, at - 1))) return false;
  return at < 2 || !isSeparator(text, at - 1) || !isDigit(text, at - 2);
}

// Whether `next` is another group of digits of the number that ends with `last`.
bool isGroup(const Item& last, const Item& next) {
  constexpr std::size_t groupSize = 3;
  return last.text.find_first_not_of(digits) == std::string::npos && !next.glued &&
         next.kind == Item::Kind::number && next.begin == last.end + 1 &&
         next.text.find_first_not_of(digits) >= groupSize &&
         (next.text.size() == groupSize || isSeparator(next.text, groupSize));
}

}  // namespace

std::string templateForm(std::string_view text) {
  constexpr std::string_view narrowBlank = "\u202F";
  const std::string readable = readableForm(text);
  std::string_view rest = readable;
  std::string form;
  bool blank = false;
  while (!rest.empty()) {
    const bool narrow = rest.starts_with(narrowBlank);
    if (narrow || std::string_view(" \t\n\v\f\r").find(rest.front()) != std::string_view::npos) {
      blank = !form.empty();
      rest.remove_prefix(narrow ? narrowBlank.size() : 1);
      continue;
    }
    if (blank) form += ' ';
    blank = false;
    form += rest.front();
    rest.remove_prefix(1);
  }
  return form;
}

std::vector<MessageNumber> numbersAt(std::string_view text, std::size_t at) {
  if (!beginsNumber(text, at)) return {};
  const Items items = itemsOf(text.substr(at, longestNumber));
  std::vector<MessageNumber> found{
      {.begin = at, .end = at + items[0].end, .digits = items[0].text}};
  std::string grouped = items[0].text;
  std::size_t last = 0;
  constexpr std::size_t longestFirstGroup = 3;
  if (grouped.size() <= longestFirstGroup) {
    while (last + 1 < items.size() && isGroup(items[last], items[last + 1])) {
      grouped += items[++last].text;
    }
  }
  if (last > 0) found.push_back({.begin = at, .end = at + items[last].end, .digits = grouped});
  if (at + items.back().end == at + longestNumber && isDigit(text, at + longestNumber)) {
    std::erase_if(found, [&](const MessageNumber& number) {
      return number.end == at + longestNumber;  // it continues behind the part that was looked at
    });
  }
  return found;
}

}  // namespace kivo::recognition
