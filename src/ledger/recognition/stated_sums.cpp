#include "ledger/recognition/stated_sums.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <vector>

#include "ledger/recognition/amount_digits.h"
#include "ledger/recognition/currencies.h"
#include "ledger/recognition/number_pieces.h"
#include "ledger/recognition/wordings.h"

namespace kivo::ledger {
namespace {

bool isMark(const Item& item, std::string_view marks) {
  return item.kind == Item::Kind::mark && item.text.size() == 1 &&
         marks.find(item.text.front()) != std::string_view::npos;
}

// A currency's sign or word in a message.
struct Stated {
  std::size_t begin = 0;  // items
  std::size_t end = 0;
  std::string codes;  // candidates, separated by blanks
};

using Words = std::vector<std::pair<std::vector<std::string>, std::string_view>>;

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> words;
  while (!text.empty()) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    words.emplace_back(text.substr(0, blank));
    text.remove_prefix(std::min(blank + 1, text.size()));
  }
  return words;
}

// Currency words by their first or by their last item.
std::map<std::string, Words> wordsBy(bool first) {
  std::map<std::string, Words> index;
  for (const CurrencyWord& word : currencyWords()) {
    auto items = split(word.items);
    std::string key = first ? items.front() : items.back();
    index[std::move(key)].emplace_back(std::move(items), word.codes);
  }
  return index;
}

// Codes that are everyday words too count in capitals only.
constexpr auto everydayWords = std::to_array<std::string_view>(
    {"all", "top", "try", "cup", "mad", "pen", "bob", "gel", "sos", "mop", "den", "ron", "ang"});

std::string isoCode(const Item& item) {
  if (item.kind != Item::Kind::word || item.text.size() != 3) return {};
  const bool everyday =
      std::find(everydayWords.begin(), everydayWords.end(), item.text) != everydayWords.end();
  if (everyday && !item.capitals) return {};
  std::string code = item.text;
  for (char& letter : code)
    letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return currencyByCode(code) != nullptr ? code : std::string();
}

bool holds(std::string_view codes, std::string_view code) {
  return code.size() == 3 && codes.find(code) != std::string_view::npos;
}

class SumReader {
 public:
  SumReader(Items items, std::string_view book) : items_(std::move(items)), book_(book) {}

  Items read() {
    markPieces(items_);
    Items result;
    for (std::size_t at = 0; at < items_.size(); ++at) {
      if (items_[at].kind != Item::Kind::number) {
        result.push_back(items_[at]);
        continue;
      }
      const std::size_t begin = at;
      Item item = sumAt(at);  // moves `at` to the last item of the sum
      while (!result.empty() && result.back().begin >= item.begin) {
        item.startsSentence = result.back().startsSentence;
        item.glued = result.back().glued;
        result.pop_back();
      }
      taken_ = std::max(taken_, std::max(at, begin) + 1);
      result.push_back(std::move(item));
    }
    return result;
  }

 private:
  [[nodiscard]] bool matches(const std::vector<std::string>& words, std::size_t begin) const {
    if (begin + words.size() > items_.size()) return false;
    for (std::size_t at = 0; at < words.size(); ++at) {
      if (items_[begin + at].text != words[at]) return false;
      // "a $18.20" is no "A$".
      const bool sign = items_[begin + at].text == "$" || items_[begin + at].text == "£";
      if (at > 0 && sign && !items_[begin + at].glued) return false;
    }
    return true;
  }

  // One Latin letter is a currency only where the book uses it, a capital at the number; so are
  // two letters, but for those that are read nowhere else ("FT2610" is a reference).
  [[nodiscard]] bool isPlausible(const Stated& stated, std::size_t number) const {
    const Item& only = items_[stated.begin];
    if (stated.end - stated.begin > 1 || only.kind != Item::Kind::word) return true;
    constexpr auto usual = std::to_array<std::string_view>(
        {"rs", "tk", "rm", "rp", "sr", "le", "kd", "bd", "jd", "dh", "mt", "tl", "kr", "re", "qr"});
    if (only.text.size() == 2 && static_cast<unsigned char>(only.text[0]) < 0x80) {
      return holds(stated.codes, book_) ||
             std::find(usual.begin(), usual.end(), only.text) != usual.end();
    }
    if (only.text.size() > 1) return true;
    const bool glued = stated.begin < number ? items_[number].glued : only.glued;
    return only.capitals && glued && holds(stated.codes, book_);
  }

  // The currency that ends in front of item `end`, its longest words.
  [[nodiscard]] std::optional<Stated> currencyBefore(std::size_t end, std::size_t number) const {
    static const auto index = wordsBy(false);
    if (end == 0 || end <= taken_) return std::nullopt;
    std::optional<Stated> best;
    if (const auto code = isoCode(items_[end - 1]); !code.empty()) best = {end - 1, end, code};
    const auto found = index.find(items_[end - 1].text);
    if (found == index.end()) return best;
    for (const auto& [words, codes] : found->second) {
      if (words.size() > end - taken_ || !matches(words, end - words.size())) continue;
      Stated stated{end - words.size(), end, std::string(codes)};
      if (best && best->end - best->begin >= words.size()) continue;
      if (isPlausible(stated, number)) best = std::move(stated);
    }
    return best;
  }

  // The currency that begins at item `begin`.
  [[nodiscard]] std::optional<Stated> currencyAt(std::size_t begin, std::size_t number) const {
    static const auto index = wordsBy(true);
    if (begin >= items_.size()) return std::nullopt;
    std::optional<Stated> best;
    if (const auto code = isoCode(items_[begin]); !code.empty()) best = {begin, begin + 1, code};
    const auto found = index.find(items_[begin].text);
    if (found == index.end()) return best;
    for (const auto& [words, codes] : found->second) {
      if (!matches(words, begin)) continue;
      Stated stated{begin, begin + words.size(), std::string(codes)};
      if (best && best->end - best->begin >= words.size()) continue;
      if (isPlausible(stated, number)) best = std::move(stated);
    }
    return best;
  }

  // In front of the number, behind marks such as ":" and a sign.
  [[nodiscard]] std::optional<Stated> inFront(std::size_t number, char& sign) const {
    std::size_t end = number;
    for (int marks = 0; marks < 4; ++marks) {
      if (auto stated = currencyBefore(end, number)) {
        if (auto other = currencyBefore(stated->begin, number)) {  // "INR Rs.500"
          const bool agrees =
              holds(stated->codes, other->codes) || holds(other->codes, stated->codes);
          if (agrees && other->codes.size() < stated->codes.size()) stated->codes = other->codes;
          if (agrees) stated->begin = other->begin;
        }
        if (stated->begin > 0 && isMark(items_[stated->begin - 1], "-+") && sign == '\0' &&
            items_[stated->begin].glued) {
          sign = items_[stated->begin - 1].text.front();
        }
        return stated;
      }
      if (end == 0 || end <= taken_ || !isMark(items_[end - 1], ".:-+=)")) return std::nullopt;
      if (isMark(items_[end - 1], "-+")) sign = items_[end - 1].text.front();
      --end;
    }
    return std::nullopt;
  }

  // Whether the currency between two numbers belongs to the second: "card 1234 EGP 50.00".
  [[nodiscard]] bool belongsToNext(std::size_t number, const Stated& stated) const {
    std::size_t next = stated.end;
    while (next < items_.size() && isMark(items_[next], ".:+-")) ++next;
    if (next >= items_.size() || items_[next].kind != Item::Kind::number || items_[next].isPiece) {
      return false;
    }
    const bool gluedToThis = items_[stated.begin].glued;
    const bool gluedToNext = next == stated.end && items_[next].glued;
    if (gluedToThis != gluedToNext) return gluedToNext;
    if (items_[number].isPiece) return true;
    if (currencyAt(next + 1, next)) return false;  // "500 USD 20 USD"
    const bool cents = items_[number].text.find_first_of(".,") != std::string::npos;
    const bool nextCents = items_[next].text.find_first_of(".,") != std::string::npos;
    return !(cents && !nextCents);
  }

  [[nodiscard]] std::optional<Stated> behind(std::size_t last) const {
    auto stated = currencyAt(last + 1, last);
    if (!stated || belongsToNext(last, *stated)) return std::nullopt;
    return stated;
  }

  // The last of the items that "1 234 567,89" takes, when it begins at `first`.
  [[nodiscard]] std::size_t lastOfSpaced(std::size_t first) const {
    std::size_t last = first;
    const auto plain = [](const std::string& digits) {
      return digits.find_first_not_of("0123456789") == std::string::npos;
    };
    if (items_[first].text.size() > 3) return first;
    while (plain(items_[last].text) && last + 1 < items_.size()) {
      const Item& next = items_[last + 1];
      const std::size_t whole = std::min(next.text.find_first_of(".,"), next.text.size());
      if (next.kind != Item::Kind::number || next.isPiece || next.glued || whole != 3) break;
      if (next.begin - items_[last].end > 3) break;
      ++last;
    }
    return last;
  }

  static bool groupsByBlanks(std::string_view code) {
    constexpr std::string_view others =
        "ZAR MZN MAD DZD TND RUB UAH KZT BYN CHF BGN GEL AZN UZS KGS XOF XAF XPF MGA CDF AOA GNF";
    const Currency* const currency = currencyByCode(code);
    return holds(others, code) || (currency != nullptr && currency->pointGroups);
  }

  [[nodiscard]] std::string resolved(const Stated& stated) const {
    return holds(stated.codes, book_) ? std::string(book_) : stated.codes.substr(0, 3);
  }

  [[nodiscard]] bool isMultiplied(std::size_t next) const {
    constexpr auto multipliers = std::to_array<std::string_view>(
        {"lakh",     "lakhs", "lac",  "lacs",    "crore",    "crores", "million",
         "millions", "mln",   "mn",   "billion", "thousand", "k",      "الف",
         "مليون",    "mil",   "juta", "ribu",    "тыс",      "млн"});
    return next < items_.size() && std::find(multipliers.begin(), multipliers.end(),
                                             items_[next].text) != multipliers.end();
  }

  [[nodiscard]] bool isBareSum(std::size_t number) const {
    const std::string& digits = items_[number].text;
    if (digits.find_first_of(".,") != std::string::npos) return true;
    std::size_t end = number;
    while (end > 0 && isMark(items_[end - 1], ":-+=.")) --end;
    if (endsWith(items_, end, Meaning::amount)) return true;
    return end > 0 && items_[end - 1].text == "by" &&
           (endsWith(items_, end, Meaning::debited) || endsWith(items_, end, Meaning::credited));
  }

  // Reads the sum around the number at `at` and moves `at` to its last item.
  Item sumAt(std::size_t& at) {
    const std::size_t number = at;
    Item item = items_[number];
    if (isDatePiece(items_, number) || isMaskedBehind(number)) return item;
    char sign = '\0';
    const std::size_t spaced = lastOfSpaced(number);
    auto stated = inFront(number, sign);
    auto after = behind(spaced);
    std::size_t last = number;
    if (spaced > number) {
      const std::string code = stated ? resolved(*stated) : after ? resolved(*after) : "";
      const bool comma = items_[spaced].text.find(',') != std::string::npos;
      if (!code.empty() && (groupsByBlanks(code) || comma)) {
        last = spaced;
        for (std::size_t next = number + 1; next <= spaced; ++next) item.text += items_[next].text;
      } else if (code.empty()) {
        after = std::nullopt;
      }
    }
    const bool unclear = spaced > last && (stated || after) &&
                         items_[spaced].text.find_first_of(".,") != std::string::npos;
    if (spaced > last) after = behind(last);
    if (!stated && !after && (item.isPiece || !isBareSum(number))) return item;
    if (!stated && item.isPiece && !items_[after->begin].glued) return item;
    if (stated && after && stated->codes.size() > 3 && holds(stated->codes, after->codes)) {
      stated->codes = after->codes;  // "$500 MXN"
      last = after->end - 1;
    } else if (!stated && after) {
      stated = after;
      last = after->end - 1;
    }
    item.kind = Item::Kind::sum;
    item.isPiece = false;
    item.sum.sign = sign != '\0' ? sign : signInFront(number);
    if (stated) {
      item.begin = std::min(item.begin, items_[stated->begin].begin);
      item.sum.currency = resolved(*stated);
    }
    item.end = items_[last].end;
    const std::string_view habit = stated ? std::string_view(item.sum.currency) : book_;
    if (!unclear && !isMultiplied(last + 1)) item.sum.minorUnits = minorUnitsOf(item.text, habit);
    at = last;
    return item;
  }

  // "TK 0221xxx" is an account.
  [[nodiscard]] bool isMaskedBehind(std::size_t number) const {
    if (number + 1 >= items_.size() || !items_[number + 1].glued) return false;
    const Item& next = items_[number + 1];
    return isMark(next, "*") ||
           (next.kind == Item::Kind::word && next.text.find_first_not_of('x') == std::string::npos);
  }

  [[nodiscard]] char signInFront(std::size_t number) const {
    if (number == 0 || !items_[number].glued || !isMark(items_[number - 1], "-+")) return '\0';
    return items_[number - 1].text.front();
  }

  Items items_;
  const std::string_view book_;
  std::size_t taken_ = 0;  // items before it belong to an earlier number
};

}  // namespace

Items withSums(Items items, std::string_view bookCurrency) {
  return SumReader(std::move(items), bookCurrency).read();
}

}  // namespace kivo::ledger
