#include "recognition/message_items.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "names/letter_case.h"
#include "names/name_fold.h"
#include "recognition/letters.h"
#include "recognition/spelling.h"

namespace kivo::recognition {
namespace {

constexpr std::string_view narrowBlank = "\u202F";

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isArabic(std::string_view character) {
  return character.size() == 2 && character[0] >= '\xD8' && character[0] <= '\xDB';
}

// The end of the number at `begin`: digits, and separators between them. A separator in front of a
// date ("5000.00,21-11-2026") is not part of it.
std::size_t endOfNumber(std::string_view text, std::size_t begin) {
  const auto endOfDigits = [text](std::size_t at) {
    while (at < text.size() && isDigit(text[at])) ++at;
    return at;
  };
  std::size_t end = endOfDigits(begin);
  while (end + 1 < text.size() && std::string_view(".,'").find(text[end]) != text.npos &&
         isDigit(text[end + 1])) {
    const std::size_t next = endOfDigits(end + 1);
    const bool joined = next + 1 < text.size() && (text[next] == '-' || text[next] == '/') &&
                        std::isalnum(static_cast<unsigned char>(text[next + 1])) != 0;
    if (joined && end > begin && next - end - 1 <= 2) break;
    end = next;
  }
  return end;
}

// Marks that change the value of the digits before them: superscripts, subscripts, fractions,
// numbers in circles.
bool changesValue(std::string_view character) {
  constexpr auto ofTwoBytes = std::to_array<std::string_view>({"²", "³", "¹", "¼", "½", "¾"});
  if (std::find(ofTwoBytes.begin(), ofTwoBytes.end(), character) != ofTwoBytes.end()) return true;
  if (character.size() != 3) return false;
  const std::string_view front = character.substr(0, 2);
  const auto last = static_cast<unsigned char>(character[2]);
  if (front == "\xE2\x81") return last >= 0xB0 && last <= 0xB9;
  if (front == "\xE2\x82") return last >= 0x80 && last <= 0x89;
  return front == "\xE2\x85" || front == "\xE2\x91";
}

// The length of the text at the front of `text` that joins two runs of digits to one number, as in
// "1e3", "1_000", "1,,000", "5×10".
std::size_t joinLength(std::string_view text) {
  constexpr auto joins = std::to_array<std::string_view>(
      {"e+", "e-", "E+", "E-", "e", "E",  "_",  "`",  "^",  "·",  "´", "ʼ",
       "×",  "‧",  "˙",  "∙",  "⋅", ",,", ",.", ".,", "''", ",'", ".'"});
  for (const std::string_view join : joins) {
    if (text.starts_with(join) && text.size() > join.size() && isDigit(text[join.size()])) {
      return join.size();
    }
  }
  return 0;
}

// The end of a number whose plain digits end at `end`, with all behind them that may change its
// value. `minorUnitsOf` refuses such a number; its plain digits alone would be a wrong amount.
std::size_t endWithChanges(std::string_view text, std::size_t end) {
  while (end < text.size()) {
    const std::string_view rest = text.substr(end);
    const std::string_view character = rest.substr(0, characterLength(rest));
    if (changesValue(character)) {
      end += character.size();
    } else if (isDigit(rest.front())) {
      end = endOfNumber(text, end);
    } else if (const std::size_t length = joinLength(rest); length > 0) {
      end = endOfNumber(text, end + length);
    } else {
      break;
    }
  }
  return end;
}

// Letters of one script; an apostrophe between two letters belongs to the word.
std::size_t endOfWord(std::string_view text, std::size_t begin) {
  std::size_t end = begin + characterLength(text.substr(begin));
  if (isUnspaced(text.substr(begin, end - begin))) return end;
  const bool arabic = isArabic(text.substr(begin, end - begin));
  while (end < text.size()) {
    std::size_t at = end;
    if (text[at] == '\'') ++at;
    const std::string_view character = text.substr(at, characterLength(text.substr(at)));
    if (character.empty() || !isLetter(character) || isArabic(character) != arabic ||
        isUnspaced(character)) {
      break;
    }
    end = at + character.size();
  }
  return end;
}

// The end of the payment or mail address at `begin`, such as "lotus.box7@upi"; `begin` without one.
std::size_t endOfAddress(std::string_view text, std::size_t begin) {
  constexpr std::size_t longest = 64;
  const std::string_view near = text.substr(begin, longest);
  const auto isPart = [](char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '.' ||
           character == '-' || character == '_';
  };
  std::size_t end = 0;
  while (end < near.size() && isPart(near[end])) ++end;
  const std::string_view local = near.substr(0, end);
  const bool isAmount = local.find_first_not_of("0123456789.") == std::string_view::npos &&
                        local.find('.') != std::string_view::npos;
  if (end + 1 >= near.size() || end == 0 || near[end] != '@' || isAmount ||
      std::isalpha(static_cast<unsigned char>(near[end + 1])) == 0) {
    return begin;
  }
  ++end;
  while (end < near.size() && std::isalnum(static_cast<unsigned char>(near[end])) != 0) ++end;
  while (end + 1 < near.size() && near[end] == '.' &&
         std::islower(static_cast<unsigned char>(near[end + 1])) != 0) {
    ++end;
    while (end < near.size() && std::isalnum(static_cast<unsigned char>(near[end])) != 0) ++end;
  }
  return begin + end;
}

bool isCapitals(std::string_view word) {
  while (!word.empty()) {
    if (word.front() != '\'' && names::caseOfFirst(word) != names::LetterCase::capital)
      return false;
    word.remove_prefix(characterLength(word));
  }
  return true;
}

Item itemAt(std::string_view text, std::size_t begin) {
  Item item{.begin = begin};
  const bool apart = begin == 0 || std::isalnum(static_cast<unsigned char>(text[begin - 1])) == 0;
  if (const std::size_t end = apart ? endOfAddress(text, begin) : begin; end > begin) {
    item.end = end;
    item.text = names::foldedName(text.substr(begin, end - begin));
    return item;
  }
  const std::string_view character = text.substr(begin, characterLength(text.substr(begin)));
  if (character == "\n") {
    item.kind = Item::Kind::lineBreak;
    item.end = begin + 1;
  } else if (isDigit(text[begin]) || beginsFraction(text, begin)) {
    item.kind = Item::Kind::number;
    item.end = endWithChanges(text, endOfNumber(text, isDigit(text[begin]) ? begin : begin + 1));
    item.text = text.substr(begin, item.end - begin);
  } else if (isLetter(character)) {
    item.end = endOfWord(text, begin);
    const std::string_view word = text.substr(begin, item.end - begin);
    item.text = folded(word);
    if (item.text.empty()) item.text = word;  // it has only invisible characters or accents
    item.capitals = isCapitals(word);
  } else {
    item.kind = Item::Kind::mark;
    item.end = begin + character.size();
    item.text = character;
  }
  return item;
}

// Words behind which a point does not end a sentence.
constexpr auto abbreviations = std::to_array<std::string_view>(
    {"rs", "tk",  "no",     "nos", "avl",  "avail", "av",   "bal", "acc",  "acct", "ac",
     "c",  "ref", "st",     "mr",  "mrs",  "ms",    "dr",   "cr",  "amt",  "txn",  "trx",
     "id", "tel", "approx", "inr", "р",    "руб",   "грн",  "тг",  "дост", "ج",    "م",
     "ر",  "س",   "د",      "sh",  "ksh",  "tsh",   "a",    "e",   "g",    "i",    "l",
     "s",  "m",   "бал",    "ост", "кред", "ost",   "dost", "disp"});

// Currencies, behind which a point ends no sentence in front of a number alone.
constexpr auto currencyAbbreviations =
    std::to_array<std::string_view>({"rs", "tk", "sh", "ksh", "tsh", "inr"});

// Whether the point at `at` belongs to a German date: "am 10.05. mit 45,00 EUR".
bool isPointOfDate(const Items& items, std::size_t at) {
  if (at < 2 || items[at - 1].kind != Item::Kind::number) return false;
  const std::string& date = items[at - 1].text;
  const std::string& word = items[at - 2].text;
  const std::size_t point = date.find('.');
  const std::string month = point == std::string::npos ? "" : date.substr(point + 1);
  const bool isDay = point == 1 || point == 2;
  const bool isMonth = month.size() == 2 && month > "00" && month <= "12";
  return isDay && isMonth &&
         (word == "am" || word == "den" || word == "vom" || word == "zum" || word == "bis");
}

bool endsSentence(const Items& items, std::size_t at, bool blankFollows, const Item& next) {
  const Item& item = items[at];
  if (item.kind == Item::Kind::lineBreak) return true;
  if (item.kind != Item::Kind::mark || !blankFollows) return false;
  if (item.text == "!" || item.text == "?") return true;
  if (item.text != "." || at == 0 || isPointOfDate(items, at)) return false;
  const Item& before = items[at - 1];
  if (isInitial(before)) return false;  // "MARIA L. SANTOS"
  const bool currency = std::find(currencyAbbreviations.begin(), currencyAbbreviations.end(),
                                  before.text) != currencyAbbreviations.end();
  if (currency && next.kind != Item::Kind::number && next.kind != Item::Kind::mark) return true;
  return before.kind != Item::Kind::word ||
         std::find(abbreviations.begin(), abbreviations.end(), before.text) == abbreviations.end();
}

}  // namespace

bool beginsFraction(std::string_view readable, std::size_t at) {
  return readable[at] == '.' && at + 1 < readable.size() && isDigit(readable[at + 1]) &&
         (at == 0 || std::string_view(" \n-$").find(readable[at - 1]) != std::string_view::npos);
}

bool isUnspaced(std::string_view word) {
  if (word.size() != 3) return false;
  const bool chinese = word[0] >= '\xE4' && word[0] <= '\xE9';
  const bool korean = word[0] >= '\xEA' && word[0] <= '\xED' && word >= "가" && word <= "힣";
  const bool thai = word[0] == '\xE0' && (word[1] == '\xB8' || word[1] == '\xB9');
  return chinese || korean || thai;
}

bool isInitial(const Item& item) {
  return item.capitals && item.text.size() == characterLength(item.text);
}

bool isAddress(const Item& item) {
  return item.kind == Item::Kind::word && item.text.find('@') != std::string::npos;
}

bool isMark(const Item& item, std::string_view marks) {
  return item.kind == Item::Kind::mark && item.text.size() == 1 &&
         marks.find(item.text.front()) != std::string_view::npos;
}

Items itemsOf(std::string_view readable) {
  Items items;
  std::size_t at = 0;
  bool blank = true;
  while (at < readable.size()) {
    const std::string_view rest = readable.substr(at);
    if (rest.front() == ' ' || rest.starts_with(narrowBlank)) {
      at += rest.front() == ' ' ? 1 : narrowBlank.size();
      blank = true;
      continue;
    }
    Item item = itemAt(readable, at);
    item.glued = !blank;
    if (item.text == "@" && blank) {  // "purchase @ KAROO FUEL"
      item.kind = Item::Kind::word;
      item.text = "at";
    }
    item.startsSentence = items.empty() || endsSentence(items, items.size() - 1, blank, item) ||
                          (items.back().kind == Item::Kind::lineBreak);
    at = item.end;
    blank = item.kind == Item::Kind::lineBreak;
    items.push_back(std::move(item));
  }
  return items;
}

}  // namespace kivo::recognition
