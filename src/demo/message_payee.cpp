#include "demo/message_payee.h"

#include <algorithm>
#include <cctype>
#include <span>
#include <vector>

#include "demo/message_amounts.h"

namespace kivo {
namespace {

constexpr std::size_t nowhere = std::string_view::npos;
constexpr std::size_t longestName = 60;

// What stands before a name, the surest first. All words are in folded spelling.
constexpr std::string_view paidIntroducers[] = {
    "merchant:", "merchant name:", "store:",    "beneficiary:", "at:",   "to:",   "التاجر:",
    "لدي:",      "الي:",           " at ",      "@ ",           " لدي ", " عند ", " لصالح ",
    " to ",      " الي ",          "purchase:", " from ",       " من ",  " في ",  " for "};
constexpr std::string_view payerIntroducers[] = {
    "sender:", "from:", "merchant:", "من:", "الراسل:", " from ", " by ", " من ", " at ", " لدي "};
// What a name does not begin with.
constexpr std::string_view notNames[] = {
    "your ",  "my ",     "our ",       "the account", "a/c",  "acc ",   "acc.",
    "card ",  "account", "debit card", "credit card", "حساب", "الحساب", "بطاق",
    "البطاق", "مبلغ",    "رصيد",       "خلال",        "تاريخ"};
// What ends a name.
constexpr std::string_view terminators[] = {
    "\n",     "\r",       ",",       ";",       "(",         " on ",        " using ",   " via ",
    " with ", " from ",   " dated ", " ref",    " card",     " by ",        " avail",    " bal",
    " for ",  " to your", " to acc", " to a/c", " has been", " successful", " was ",     " is ",
    " at ",   " in your", " into ",  " - ",     " http",     " بتاريخ",     " باستخدام", " ببطاق",
    " بطاق",  " يوم",     " الساعه", " رصيد",   " الرصيد",   " المتاح",     " في ",      " من ",
    " الي ",  " بمبلغ",   " بقيمه",  " بنجاح",  " عبر "};

bool startsWithAny(std::string_view text, std::span<const std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [text](std::string_view word) { return text.starts_with(word); });
}

// The end of the name that begins at `begin`.
std::size_t endOfName(std::string_view folded, std::size_t begin,
                      const std::vector<StatedNumber>& numbers) {
  std::size_t end = folded.size();
  for (const std::string_view terminator : terminators)
    end = std::min(end, folded.find(terminator, begin));
  for (const StatedNumber& number : numbers) {
    const bool ends = number.isPiece || !number.currency.empty();
    if (ends && number.begin >= begin) end = std::min(end, number.begin);
  }
  // A point ends it before a blank, but not behind an abbreviation such as "St.".
  for (std::size_t at = folded.find('.', begin); at < end; at = folded.find('.', at + 1)) {
    const bool beforeBlank = at + 1 == folded.size() || folded[at + 1] == ' ';
    if (beforeBlank && at - begin > 3) end = at;
  }
  return end;
}

bool beginsAName(std::string_view folded, std::size_t begin,
                 const std::vector<StatedNumber>& numbers) {
  if (begin >= folded.size() || startsWithAny(folded.substr(begin), notNames)) return false;
  return std::none_of(numbers.begin(), numbers.end(), [begin](const StatedNumber& number) {
    return number.begin == begin && (number.isPiece || !number.currency.empty());
  });
}

bool hasLetters(std::string_view name) {
  return std::any_of(name.begin(), name.end(), [](char character) {
    return static_cast<unsigned char>(character) >= 0x80 ||
           std::isalpha(static_cast<unsigned char>(character)) != 0;
  });
}

}  // namespace

std::optional<std::string> payeeIn(const MessageText& text, Payee side) {
  const std::string_view folded = text.folded;
  const auto numbers = statedNumbers(folded);
  const std::span<const std::string_view> introducers =
      side == Payee::whoIsPaid ? std::span(paidIntroducers)
                               : std::span<const std::string_view>(payerIntroducers);
  for (const std::string_view introducer : introducers) {
    for (std::size_t at = findWord(folded, introducer); at != nowhere;
         at = findWord(folded, introducer, at + 1)) {
      const std::size_t begin = folded.find_first_not_of(' ', at + introducer.size());
      if (begin == nowhere || !beginsAName(folded, begin, numbers)) continue;
      const std::size_t end = endOfName(folded, begin, numbers);
      std::string name = shownPayee(std::string_view(text.readable).substr(begin, end - begin));
      if (hasLetters(name)) return name;
    }
  }
  return std::nullopt;
}

std::string shownPayee(std::string_view name) {
  std::string line(name);
  std::replace_if(
      line.begin(), line.end(),
      [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
  constexpr std::string_view edges = " \"'*:-.,#";
  const std::size_t begin = line.find_first_not_of(edges);
  if (begin == nowhere) return {};
  line.erase(0, begin);
  line.resize(wholeCharacters(line, longestName));
  line.erase(line.find_last_not_of(edges) + 1);
  return line;
}

}  // namespace kivo
