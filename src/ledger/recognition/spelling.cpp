#include "ledger/recognition/spelling.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <utility>

namespace kivo::ledger {
namespace {

using Replacement = std::pair<std::string_view, std::string_view>;

constexpr auto readableForms = std::to_array<Replacement>({
    {"٫", "."},           {"٬", ","},           {"،", ","},      {"؟", "?"},      {"’", "'"},
    {"‘", "'"},           {"–", "-"},           {"—", "-"},      {"−", "-"},      {"\u00A0", " "},
    {"\u202F", "\u202F"}, {"\u2009", "\u202F"}, {"\u200A", " "}, {"\u3000", " "}, {"\u200B", ""},
    {"\u200C", ""},       {"\u200D", ""},       {"\u200E", ""},  {"\u200F", ""},  {"\u202A", ""},
    {"\u202B", ""},       {"\u202C", ""},       {"\u202D", ""},  {"\u202E", ""},  {"\u2066", ""},
    {"\u2067", ""},       {"\u2068", ""},       {"\u2069", ""},  {"\uFEFF", ""},  {"ی", "ي"},
    {"ک", "ك"},           {"；", ";"},          {"：", ":"},     {"，", ","},     {"。", "."},
    {"．", "."},          {"।", "."},           {"۔", "."},
});

// Zeros of the scripts whose ten digits follow each other.
constexpr auto zeros = std::to_array<std::string_view>(
    {"٠", "۰", "०", "০", "๐", "０", "੦", "૦", "୦", "௦", "౦", "೦", "൦", "໐", "၀", "០"});

constexpr auto foldedForms = std::to_array<Replacement>({
    {"أ", "ا"}, {"إ", "ا"}, {"آ", "ا"}, {"ٱ", "ا"}, {"ة", "ه"}, {"ى", "ي"}, {"ّ", ""},   {"َ", ""},
    {"ً", ""},   {"ُ", ""},   {"ٌ", ""},   {"ِ", ""},   {"ٍ", ""},   {"ْ", ""},   {"à", "a"}, {"á", "a"},
    {"â", "a"}, {"ã", "a"}, {"ä", "a"}, {"å", "a"}, {"ç", "c"}, {"è", "e"}, {"é", "e"}, {"ê", "e"},
    {"ë", "e"}, {"ì", "i"}, {"í", "i"}, {"î", "i"}, {"ï", "i"}, {"ñ", "n"}, {"ò", "o"}, {"ó", "o"},
    {"ô", "o"}, {"õ", "o"}, {"ö", "o"}, {"ù", "u"}, {"ú", "u"}, {"û", "u"}, {"ü", "u"}, {"À", "a"},
    {"Á", "a"}, {"Â", "a"}, {"Ã", "a"}, {"Ä", "a"}, {"Å", "a"}, {"Ç", "c"}, {"È", "e"}, {"É", "e"},
    {"Ê", "e"}, {"Ë", "e"}, {"Ì", "i"}, {"Í", "i"}, {"Î", "i"}, {"Ï", "i"}, {"Ñ", "n"}, {"Ò", "o"},
    {"Ó", "o"}, {"Ô", "o"}, {"Õ", "o"}, {"Ö", "o"}, {"Ù", "u"}, {"Ú", "u"}, {"Û", "u"}, {"Ü", "u"},
    {"ı", "i"}, {"İ", "i"}, {"ş", "s"}, {"Ş", "s"}, {"ğ", "g"}, {"Ğ", "g"}, {"č", "c"}, {"Č", "c"},
    {"š", "s"}, {"Š", "s"}, {"ž", "z"}, {"Ž", "z"}, {"ř", "r"}, {"ě", "e"}, {"ů", "u"}, {"ý", "y"},
    {"ł", "l"}, {"Ł", "l"}, {"ą", "a"}, {"ę", "e"}, {"ś", "s"}, {"ć", "c"}, {"ż", "z"}, {"ź", "z"},
    {"ń", "n"}, {"ő", "o"}, {"ű", "u"}, {"đ", "d"}, {"Đ", "d"}, {"ё", "е"}, {"Ё", "е"},
});

const Replacement* replacementAt(std::string_view text, std::span<const Replacement> forms) {
  const auto found = std::find_if(forms.begin(), forms.end(), [text](const Replacement& form) {
    return text.starts_with(form.first);
  });
  return found == forms.end() ? nullptr : &*found;
}

// The value of a digit of another script at the front of `text`, or -1.
int digitAt(std::string_view text) {
  for (const std::string_view zero : zeros) {
    if (text.size() < zero.size() ||
        text.substr(0, zero.size() - 1) != zero.substr(0, zero.size() - 1)) {
      continue;
    }
    const int value =
        static_cast<unsigned char>(text[zero.size() - 1]) - static_cast<unsigned char>(zero.back());
    if (value >= 0 && value <= 9) return value;
  }
  return -1;
}

bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

// Cyrillic capitals, which have their small letters at fixed distances.
bool foldCyrillic(std::string_view character, std::string& folded) {
  if (character.size() != 2 || character[0] != '\xD0') return false;
  const auto second = static_cast<unsigned char>(character[1]);
  if (second >= 0x90 && second <= 0x9F) {
    folded += {'\xD0', static_cast<char>(second + 0x20)};
  } else if (second >= 0xA0 && second <= 0xAF) {
    folded += {'\xD1', static_cast<char>(second - 0x20)};
  } else {
    return false;
  }
  return true;
}

constexpr std::string_view stretch = "ـ";

}  // namespace

std::size_t characterLength(std::string_view text) {
  if (text.empty()) return 0;
  std::size_t length = 1;
  while (length < text.size() && length < 4 && !isAscii(text[0]) &&
         (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
    ++length;
  }
  return length;
}

std::string readableForm(std::string_view text) {
  std::string readable;
  readable.reserve(text.size());
  std::size_t letters = 0;  // non-ASCII letters since the last other character
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    const std::string_view character = text.substr(0, length);
    text.remove_prefix(length);
    if (length == 1) {
      readable += character == "\r" ? "" : character == "\t" ? " " : character;
      letters = 0;
      continue;
    }
    if (character == stretch) {  // behind a single letter it sets a preposition off: "لـ Ahmad"
      if (letters == 1) readable += ' ';
      continue;
    }
    ++letters;
    if (const int digit = digitAt(character); digit >= 0) {
      readable += static_cast<char>('0' + digit);
      letters = 0;
    } else if (const auto* const form = replacementAt(character, readableForms)) {
      readable += form->second;
    } else {
      readable += character;
    }
  }
  return readable;
}

std::string foldedForm(std::string_view word) {
  std::string folded;
  while (!word.empty()) {
    const std::size_t length = characterLength(word);
    const std::string_view character = word.substr(0, length);
    word.remove_prefix(length);
    if (length == 1) {
      folded += static_cast<char>(std::tolower(static_cast<unsigned char>(character[0])));
    } else if (const auto* const form = replacementAt(character, foldedForms)) {
      folded += form->second;
    } else if (!foldCyrillic(character, folded)) {
      folded += character;
    }
  }
  return folded;
}

std::size_t wholeCharacters(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text.size();
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80) --limit;
  return limit;
}

}  // namespace kivo::ledger
