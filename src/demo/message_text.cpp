#include "demo/message_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace kivo {
namespace {

using Replacement = std::pair<std::string_view, std::string_view>;

constexpr std::array<Replacement, 20> readableForms{{
    {"٫", "."},                                   // the Arabic decimal separator
    {"٬", ","},                                   // the Arabic thousands separator
    {"،", ","},      {"؟", "?"},      {"ـ", ""},  // only stretches a word
    {"\u00A0", " "}, {"\u202F", " "}, {"\u2009", " "}, {"\u200B", ""}, {"\u200E", ""},
    {"\u200F", ""},  {"\u202A", ""},  {"\u202B", ""},  {"\u202C", ""}, {"\u202D", ""},
    {"\u202E", ""},  {"\u2066", ""},  {"\u2067", ""},  {"\u2068", ""}, {"\u2069", ""},
}};

// Both sides of a pair are of one length, so that places stay the same.
constexpr std::array<Replacement, 5> foldedForms{
    {{"أ", "ا"}, {"إ", "ا"}, {"آ", "ا"}, {"ة", "ه"}, {"ى", "ي"}}};

template <std::size_t count>
const Replacement* replacementAt(std::string_view text,
                                 const std::array<Replacement, count>& forms) {
  const auto found = std::find_if(forms.begin(), forms.end(), [text](const Replacement& form) {
    return text.starts_with(form.first);
  });
  return found == forms.end() ? nullptr : &*found;
}

// The value of an Arabic-Indic or Persian digit at the front of `text`, or -1.
int easternDigit(std::string_view text) {
  if (text.size() < 2) return -1;
  const auto lead = static_cast<unsigned char>(text[0]);
  const int second = static_cast<unsigned char>(text[1]);
  if (lead == 0xD9 && second >= 0xA0 && second <= 0xA9) return second - 0xA0;
  if (lead == 0xDB && second >= 0xB0 && second <= 0xB9) return second - 0xB0;
  return -1;
}

bool isLetter(char character) { return std::isalpha(static_cast<unsigned char>(character)) != 0; }

}  // namespace

MessageText::MessageText(std::string_view message) {
  while (!message.empty()) {
    if (const int digit = easternDigit(message); digit >= 0) {
      readable += static_cast<char>('0' + digit);
      message.remove_prefix(2);
    } else if (const auto* const form = replacementAt(message, readableForms)) {
      readable += form->second;
      message.remove_prefix(form->first.size());
    } else {
      readable += message.front();
      message.remove_prefix(1);
    }
  }
  std::string_view rest = readable;
  while (!rest.empty()) {
    if (const auto* const form = replacementAt(rest, foldedForms)) {
      folded += form->second;
      rest.remove_prefix(form->first.size());
    } else {
      folded += static_cast<char>(std::tolower(static_cast<unsigned char>(rest.front())));
      rest.remove_prefix(1);
    }
  }
}

std::size_t wholeCharacters(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text.size();
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80) --limit;
  return limit;
}

std::vector<std::string_view> sentences(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  std::vector<std::string_view> result;
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool last = at + 1 == text.size();
    const bool mark = std::string_view(".!?").find(text[at]) != std::string_view::npos;
    const bool ends =
        text[at] == '\n' || (mark && !last && blanks.find(text[at + 1]) != std::string_view::npos);
    if (!ends && !last) continue;
    result.push_back(text.substr(begin, at + 1 - begin));
    begin = at + 1;
  }
  return result;
}

std::size_t findWord(std::string_view folded, std::string_view word, std::size_t from) {
  const bool openEnd = word.ends_with('~');
  if (openEnd) word.remove_suffix(1);
  for (std::size_t at = folded.find(word, from); at != std::string_view::npos;
       at = folded.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    const bool within = at > 0 && isLetter(folded[at - 1]) && isLetter(word.front());
    const bool goesOn = end < folded.size() && isLetter(folded[end]) && isLetter(word.back());
    if (!within && (openEnd || !goesOn)) return at;
  }
  return std::string_view::npos;
}

bool holdsAny(std::string_view folded, std::span<const std::string_view> words) {
  return std::any_of(words.begin(), words.end(), [folded](std::string_view word) {
    return findWord(folded, word) != std::string_view::npos;
  });
}

}  // namespace kivo
