#include "demo/message_amounts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <string>

namespace kivo {
namespace {

struct CurrencyWord {
  std::string_view word;
  std::string_view code;
};

constexpr std::array currencyWords = std::to_array<CurrencyWord>({
    {"egp", "EGP"},  {"l.e.", "EGP"},  {"l.e", "EGP"},   {"le", "EGP"},   {"ج.م.", "EGP"},
    {"ج.م", "EGP"},  {"جنيها", "EGP"}, {"جنيه", "EGP"},  {"sar", "SAR"},  {"sr", "SAR"},
    {"ر.س.", "SAR"}, {"ر.س", "SAR"},   {"ريال", "SAR"},  {"aed", "AED"},  {"dhs.", "AED"},
    {"dhs", "AED"},  {"dh", "AED"},    {"د.ا", "AED"},   {"درهم", "AED"}, {"us$", "USD"},
    {"usd", "USD"},  {"$", "USD"},     {"دولار", "USD"}, {"eur", "EUR"},  {"€", "EUR"},
    {"يورو", "EUR"}, {"gbp", "GBP"},   {"£", "GBP"},     {"kwd", "KWD"},  {"kd", "KWD"},
    {"د.ك.", "KWD"}, {"د.ك", "KWD"},   {"دينار", "KWD"}, {"bhd", "BHD"},  {"bd", "BHD"},
    {"omr", "OMR"},  {"jod", "JOD"},   {"qar", "QAR"},   {"inr", "INR"},  {"rs.", "INR"},
    {"rs", "INR"},   {"₹", "INR"},     {"chf", "CHF"},
});

constexpr std::array<std::string_view, 4> currenciesWithThreeDecimals{"KWD", "BHD", "OMR", "JOD"};

bool isDigit(char character) { return character >= '0' && character <= '9'; }
bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }
bool isWordByte(char character) {
  return !isAscii(character) || std::isalpha(static_cast<unsigned char>(character)) != 0;
}
bool isSeparator(char character) { return character == '.' || character == ','; }

const CurrencyWord* currencyBefore(std::string_view text) {
  for (const CurrencyWord& currency : currencyWords) {
    if (!text.ends_with(currency.word)) continue;
    const std::size_t begin = text.size() - currency.word.size();
    const bool latin = isWordByte(currency.word.front()) && isAscii(currency.word.front());
    if (!latin || begin == 0 || !isWordByte(text[begin - 1])) return &currency;
  }
  return nullptr;
}

const CurrencyWord* currencyAfter(std::string_view text) {
  for (const CurrencyWord& currency : currencyWords) {
    if (!text.starts_with(currency.word)) continue;
    const std::size_t end = currency.word.size();
    if (!isWordByte(currency.word.back()) || end == text.size() || !isWordByte(text[end])) {
      return &currency;
    }
  }
  return nullptr;
}

std::size_t skippedBlanks(std::string_view text) {
  return std::min(text.find_first_not_of(' '), text.size());
}

// Where the digits' decimal separator is, or npos when all separators group thousands.
std::size_t decimalSeparator(std::string_view digits, std::string_view currency) {
  const std::size_t last = digits.find_last_of(".,");
  if (last == std::string_view::npos) return last;
  const std::size_t first = digits.find_first_of(".,");
  const bool mixed = digits.find(digits[last] == '.' ? ',' : '.') != std::string_view::npos;
  if (mixed) return last;
  if (first != last) return std::string_view::npos;
  if (digits.size() - last - 1 != 3 || digits.substr(0, last) == "0") return last;
  const bool threeDecimals =
      std::find(currenciesWithThreeDecimals.begin(), currenciesWithThreeDecimals.end(), currency) !=
      currenciesWithThreeDecimals.end();
  return threeDecimals && digits[last] == '.' ? last : std::string_view::npos;
}

double valueOf(std::string_view digits, std::string_view currency) {
  const std::size_t decimal = decimalSeparator(digits, currency);
  std::string plain;
  for (std::size_t at = 0; at < digits.size(); ++at) {
    if (!isSeparator(digits[at])) plain += digits[at];
    if (at == decimal) plain += '.';
  }
  double value = 0;
  std::from_chars(plain.data(), plain.data() + plain.size(), value);
  return value;
}

// The digits and separators from `begin` on; a separator belongs to a number when a digit follows.
std::size_t endOfNumber(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
  while (end < text.size() &&
         (isDigit(text[end]) ||
          (isSeparator(text[end]) && end + 1 < text.size() && isDigit(text[end + 1])))) {
    ++end;
  }
  return end;
}

bool isPieceOfOther(std::string_view text, std::size_t begin, std::size_t end) {
  constexpr std::string_view joints = ":/-";
  const bool masked = begin > 0 && std::string_view("*x#").find(text[begin - 1]) != text.npos;
  const bool joinedBefore = begin > 1 && joints.find(text[begin - 1]) != text.npos &&
                            std::isalnum(static_cast<unsigned char>(text[begin - 2])) != 0;
  const bool joinedAfter = end + 1 < text.size() && joints.find(text[end]) != text.npos &&
                           std::isalnum(static_cast<unsigned char>(text[end + 1])) != 0;
  return masked || joinedBefore || joinedAfter;
}

// The currency in front of the number, which begins at `begin`: "EGP 250", "EGP: -250".
void readCurrencyBefore(std::string_view text, std::size_t taken, StatedNumber& number) {
  std::string_view before = text.substr(taken, number.begin - taken);
  while (!before.empty() && std::string_view(" +-:").find(before.back()) != before.npos) {
    before.remove_suffix(1);
  }
  if (const auto* const currency = currencyBefore(before)) {
    number.currency = currency->code;
    number.begin = taken + before.size() - currency->word.size();
  }
}

// The currency behind the number: "250 EGP". In "card 1234 EGP 50.00" it is the next number's.
void readCurrencyAfter(std::string_view text, StatedNumber& number) {
  const std::size_t word = number.end + skippedBlanks(text.substr(number.end));
  const auto* const currency = currencyAfter(text.substr(word));
  if (currency == nullptr || number.isPiece) return;
  const std::size_t end = word + currency->word.size();
  const std::size_t next = end + skippedBlanks(text.substr(end));
  const std::size_t nextEnd = endOfNumber(text, next);
  if (!number.hasCents && nextEnd > next && !isPieceOfOther(text, next, nextEnd)) return;
  number.currency = currency->code;
  number.end = end;
}

}  // namespace

std::vector<StatedNumber> statedNumbers(std::string_view folded) {
  std::vector<StatedNumber> numbers;
  std::size_t taken = 0;  // what lies before belongs to an earlier number
  for (std::size_t begin = 0; begin < folded.size(); ++begin) {
    if (!isDigit(folded[begin])) continue;
    const std::size_t end = endOfNumber(folded, begin);
    const std::string_view digits = folded.substr(begin, end - begin);
    StatedNumber number{.begin = begin, .end = end};
    number.hasCents = digits.size() > 2 && isSeparator(digits[digits.size() - 3]);
    number.isPiece = isPieceOfOther(folded, begin, end);
    readCurrencyBefore(folded, taken, number);
    if (number.currency.empty()) readCurrencyAfter(folded, number);
    number.value = valueOf(digits, number.currency);
    numbers.push_back(number);
    taken = number.end;
    begin = number.end - 1;
  }
  return numbers;
}

}  // namespace kivo
