#include "recognition/templates/figures.h"

#include <algorithm>
#include <array>
#include <vector>

#include "names/name_fold.h"
#include "recognition/message_items.h"
#include "recognition/number_pieces.h"
#include "recognition/templates/message_pattern.h"

namespace kivo::recognition {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view marks = ".,;:!?()[]\"'";

// A word of the message, and the part of it that {any} replaces: [`begin`, `end`), which may be
// empty.
struct Word {
  std::string_view text;
  std::size_t begin = 0;
  std::size_t end = 0;
  // Covered by the {any} of the previous word.
  bool joined = false;

  [[nodiscard]] bool isFigure() const { return begin < end; }
  [[nodiscard]] bool follows(const Word& before) const {
    return before.isFigure() && before.end == before.text.size() && isFigure() && begin == 0;
  }
};

// Whether `word` is a month for number_pieces.h, where a number in front of a month is part of a
// date.
bool isMonth(std::string_view word) {
  const Items date = itemsOf("1 " + std::string(word));
  return date.size() == 2 && isDatePiece(date, 0);
}

bool isDayOrHalf(std::string_view word) {
  constexpr auto known = std::to_array<std::string_view>(
      {"monday",   "tuesday",  "wednesday", "thursday", "friday", "saturday", "sunday", "mon",
       "tue",      "tues",     "wed",       "thu",      "thur",   "thurs",    "fri",    "sat",
       "sun",      "am",       "pm",        "a.m",      "p.m",    "السبت",    "الاحد",  "الاثنين",
       "الثلاثاء", "الاربعاء", "الخميس",    "الجمعه",   "ص",      "م",        "صباحا",  "مساء"});
  return std::find(known.begin(), known.end(), names::foldedName(word)) != known.end();
}

std::vector<Word> wordsOf(std::string_view part) {
  std::vector<Word> words;
  for (std::size_t begin = 0; begin <= part.size();) {
    const std::size_t end = std::min(part.find(' ', begin), part.size());
    words.push_back({.text = part.substr(begin, end - begin)});
    begin = end + 1;
  }
  return words;
}

// Makes the digits of `word`, with the text that belongs to them, its figure.
void markFigure(Word& word, Neighbours touching) {
  const std::size_t first = word.text.find_first_of(digits);
  if (first == std::string_view::npos) return;
  const std::size_t last = word.text.find_last_of(digits) + 1;
  const std::size_t prefix = word.text.substr(0, first).find_last_of(":=#([") + 1;
  const std::size_t suffix = word.text.find_last_not_of(marks) + 1;
  word.begin = touching.behindPlaceholder ? first : prefix;
  word.end = touching.beforePlaceholder ? last : std::max(last, suffix);
}

void markDateWord(Word& word) {
  const std::size_t begin = std::min(word.text.find_first_not_of(marks), word.text.size());
  const std::size_t end = word.text.find_last_not_of(marks) + 1;
  const std::string_view bare = word.text.substr(begin, std::max(begin, end) - begin);
  if (!isMonth(bare) && !isDayOrHalf(bare)) return;
  word.begin = begin;
  word.end = end;
}

// A word that touches a placeholder stays, so that there is text between the two.
void markDateWords(std::vector<Word>& words, Neighbours neighbours) {
  const std::size_t begin = neighbours.behindPlaceholder ? 1 : 0;
  const std::size_t end = words.size() - (neighbours.beforePlaceholder ? 1 : 0);
  const auto mark = [&](std::size_t at, std::size_t beside) {
    if (!words[at].isFigure() && words[beside].isFigure()) markDateWord(words[at]);
  };
  for (std::size_t at = std::max<std::size_t>(begin, 1); at < end; ++at) mark(at, at - 1);
  for (std::size_t at = std::min(end, words.size() - 1); at-- > begin;) mark(at, at + 1);
}

// Joins consecutive figures, such as a date and a time. Next to a placeholder each keeps an {any}
// of its own: one {any} for several words would leave open where the payee of "{payee} {any}" ends,
// or which number is the amount of "{any} {amount}".
void joinFigures(std::vector<Word>& words, Neighbours neighbours) {
  for (std::size_t first = 0, last = 0; first < words.size(); first = last + 1) {
    last = first;
    while (last + 1 < words.size() && words[last + 1].follows(words[last])) ++last;
    // Between a placeholder and a blank there is an empty word.
    const bool isFirst = first == 0 || (first == 1 && words.front().text.empty());
    const bool isLast =
        last + 1 == words.size() || (last + 2 == words.size() && words.back().text.empty());
    const bool isBehind = neighbours.behindPlaceholder && isFirst && words[first].begin == 0;
    const bool isBefore =
        neighbours.beforePlaceholder && isLast && words[last].end == words[last].text.size();
    for (std::size_t at = first + 1; at <= last && !isBehind && !isBefore; ++at) {
      words[at].joined = true;
    }
  }
}

}  // namespace

std::string withoutFigures(std::string_view part, Neighbours neighbours) {
  std::vector<Word> words = wordsOf(part);
  for (std::size_t at = 0; at < words.size(); ++at) {
    markFigure(words[at],
               {.behindPlaceholder = neighbours.behindPlaceholder && at == 0,
                .beforePlaceholder = neighbours.beforePlaceholder && at + 1 == words.size()});
  }
  markDateWords(words, neighbours);
  joinFigures(words, neighbours);
  std::string pattern;
  for (const Word& word : words) {
    if (!word.joined) {
      if (&word != words.data()) pattern += ' ';
      pattern += MessagePattern::escaped(word.text.substr(0, word.begin));
      if (word.isFigure()) pattern += "{any}";
    }
    pattern += MessagePattern::escaped(word.text.substr(word.end));
  }
  return pattern;
}

}  // namespace kivo::recognition
