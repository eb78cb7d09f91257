#include "recognition/stated_currency.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <unordered_map>
#include <utility>
#include <vector>

#include "money/currencies.h"
#include "money/money.h"

namespace kivo::recognition {

using money::currencyByCode;
using money::CurrencyWord;
using money::currencyWords;

namespace {

using Words = std::vector<std::pair<std::vector<std::string>, std::string_view>>;

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> words;
  for (Item& item : itemsOf(text)) words.push_back(std::move(item.text));
  return words;
}

// Currency words by their first or by their last item.
std::unordered_map<std::string, Words> wordsBy(bool first) {
  std::unordered_map<std::string, Words> index;
  for (const CurrencyWord& word : currencyWords()) {
    auto items = split(word.items);
    std::string key = first ? items.front() : items.back();
    index[std::move(key)].emplace_back(std::move(items), word.codes);
  }
  return index;
}

// Codes that are also everyday words; they count in capitals only.
constexpr auto everydayWords = std::to_array<std::string_view>(
    {"all", "top", "try", "cup", "mad", "pen", "bob", "gel", "sos", "mop", "den", "ron", "ang"});

std::string isoCode(const Item& item) {
  if (item.text.size() != 3) return {};
  const bool everyday =
      std::find(everydayWords.begin(), everydayWords.end(), item.text) != everydayWords.end();
  if (everyday && !item.capitals) return {};
  std::string code = item.text;
  for (char& letter : code)
    letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return currencyByCode(code) != nullptr ? code : std::string();
}

bool matches(const std::vector<std::string>& words, const Items& items, std::size_t begin) {
  if (begin + words.size() > items.size()) return false;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (items[begin + at].text != words[at]) return false;
    // The "a $" of "a $18.20" is not "A$".
    const bool sign = items[begin + at].text == "$" || items[begin + at].text == "£";
    if (at > 0 && sign && !items[begin + at].glued) return false;
  }
  return true;
}

// Whether the number, with its groups, has two decimals: "6 500,00".
bool hasCents(const Items& items, std::size_t number) {
  const auto isPlain = [](const Item& item) {
    return item.text.size() <= 3 && item.text.find_first_not_of("0123456789") == std::string::npos;
  };
  while (number + 1 < items.size() && items[number + 1].kind == Item::Kind::number &&
         !items[number + 1].glued && isPlain(items[number])) {
    ++number;
  }
  constexpr std::size_t cents = 3;
  const std::string& digits = items[number].text;
  return digits.size() > cents &&
         std::string_view(".,").find(digits[digits.size() - cents]) != std::string_view::npos;
}

// One or two letters may also begin a reference ("FT2610").
bool isPlausible(const StatedCurrency& stated, const Items& items, std::size_t number,
                 std::string_view book) {
  const Item& only = items[stated.begin];
  if (stated.end - stated.begin > 1 || only.kind != Item::Kind::word) return true;
  constexpr auto usual = std::to_array<std::string_view>(
      {"rs", "tk", "rm", "rp", "sr", "le", "kd", "bd", "jd", "dh", "mt", "tl", "kr", "re", "qr"});
  if (only.text == "le" && !only.capitals) return stated.mayBe(book);  // "carte 0912 le 1er mai"
  if (only.text == "บ" && stated.begin < number) return false;         // the end of a word
  if (only.text == "tk" && book == "VND") return false;                // an account
  if (only.text == "qr" && stated.begin < number && !stated.mayBe(book)) {
    const auto after = currencyAt(items, number + 1, number, book);  // "QR 75.00 บาท"
    if (after && after->mayBe(book)) return false;
  }
  const bool latin = static_cast<unsigned char>(only.text[0]) < 0x80;
  if (only.text.size() == 2 && latin) {
    return stated.mayBe(book) || std::find(usual.begin(), usual.end(), only.text) != usual.end();
  }
  if (only.text.size() > 1) return true;
  const bool front = stated.begin < number;  // "R 6 500,00"
  const bool glued =
      front ? items[number].glued || (only.capitals && hasCents(items, number)) : only.glued;
  return (only.capitals || only.text == "d" || only.text == "r") && glued && stated.mayBe(book);
}

}  // namespace

bool holdsCode(std::string_view codes, std::string_view code) {
  constexpr std::size_t length = 3;
  return code.size() == length && codes.find(code) != std::string_view::npos;
}

bool StatedCurrency::mayBe(std::string_view code) const { return holdsCode(codes, code); }

std::string StatedCurrency::resolvedFor(std::string_view book) const {
  constexpr std::size_t length = 3;
  return mayBe(book) ? std::string(book) : codes.substr(0, length);
}

std::optional<StatedCurrency> currencyBefore(const Items& items, std::size_t end, std::size_t taken,
                                             std::size_t number, std::string_view book) {
  static const auto index = wordsBy(false);
  if (end == 0 || end <= taken) return std::nullopt;
  std::optional<StatedCurrency> best;
  if (const auto code = isoCode(items[end - 1]); !code.empty()) best = {end - 1, end, code};
  const auto found = index.find(items[end - 1].text);
  if (found == index.end()) return best;
  for (const auto& [words, codes] : found->second) {
    if (words.size() > end - taken || !matches(words, items, end - words.size())) continue;
    StatedCurrency stated{end - words.size(), end, std::string(codes)};
    if (best && best->end - best->begin >= words.size()) continue;
    if (isPlausible(stated, items, number, book)) best = std::move(stated);
  }
  return best;
}

std::optional<StatedCurrency> currencyAt(const Items& items, std::size_t begin, std::size_t number,
                                         std::string_view book) {
  static const auto index = wordsBy(true);
  if (begin >= items.size()) return std::nullopt;
  std::optional<StatedCurrency> best;
  if (const auto code = isoCode(items[begin]); !code.empty()) best = {begin, begin + 1, code};
  const auto found = index.find(items[begin].text);
  if (found == index.end()) return best;
  for (const auto& [words, codes] : found->second) {
    if (!matches(words, items, begin)) continue;
    StatedCurrency stated{begin, begin + words.size(), std::string(codes)};
    if (best && best->end - best->begin >= words.size()) continue;
    if (isPlausible(stated, items, number, book)) best = std::move(stated);
  }
  return best;
}

}  // namespace kivo::recognition
