#include "recognition/stated_sums.h"

#include <algorithm>
#include <array>
#include <vector>

#include "money/currencies.h"
#include "recognition/amount_digits.h"
#include "recognition/number_pieces.h"
#include "recognition/split_numbers.h"
#include "recognition/stated_currency.h"

namespace kivo::recognition {

using money::Currency;
using money::currencyByCode;

namespace {

class SumReader {
 public:
  SumReader(Items items, std::string_view book, const Wordings& wordings)
      : items_(std::move(items)), book_(book), wordings_(wordings) {}

  Items read() {
    markPieces(items_);
    Items result;
    for (std::size_t at = 0; at < items_.size(); ++at) {
      if (items_[at].kind != Item::Kind::number) {
        result.push_back(items_[at]);
        continue;
      }
      Item item = sumAt(at);  // moves `at` to the last item of the sum
      while (!result.empty() && result.back().begin >= item.begin) {
        item.startsSentence = result.back().startsSentence;
        item.glued = result.back().glued;
        result.pop_back();
      }
      taken_ = at + 1;
      result.push_back(std::move(item));
    }
    return result;
  }

 private:
  [[nodiscard]] std::optional<StatedCurrency> currencyEndingAt(std::size_t end,
                                                               std::size_t number) const {
    return currencyBefore(items_, end, taken_, number, book_);
  }

  [[nodiscard]] std::optional<StatedCurrency> currencyBeginningAt(std::size_t begin,
                                                                  std::size_t number) const {
    return currencyAt(items_, begin, number, book_);
  }

  // The currency in front of the number. Marks such as ":" and a sign may be between them. Sets
  // `sign` with or without a currency.
  [[nodiscard]] std::optional<StatedCurrency> inFront(std::size_t number, char& sign) const {
    std::size_t end = number;
    for (int marks = 0; marks < 4; ++marks) {
      if (auto stated = currencyEndingAt(end, number)) {
        if (auto other = currencyEndingAt(stated->begin, number)) {  // "INR Rs.500"
          const bool agrees = stated->mayBe(other->codes) || other->mayBe(stated->codes);
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
  [[nodiscard]] bool belongsToNext(std::size_t number, const StatedCurrency& stated) const {
    std::size_t next = stated.end;
    while (next < items_.size() && isMark(items_[next], ".:+-")) ++next;
    if (next >= items_.size() || items_[next].kind != Item::Kind::number || items_[next].isPiece) {
      return false;
    }
    const bool gluedToThis = items_[stated.begin].glued;
    const bool gluedToNext = next == stated.end && items_[next].glued;
    if (gluedToThis != gluedToNext) return gluedToNext;
    if (items_[number].isPiece) return true;
    if (currencyBeginningAt(next + 1, next)) return false;  // "500 USD 20 USD"
    const bool cents = items_[number].text.find_first_of(".,") != std::string::npos;
    const bool nextCents = items_[next].text.find_first_of(".,") != std::string::npos;
    return !(cents && !nextCents);
  }

  [[nodiscard]] std::optional<StatedCurrency> behind(std::size_t last) const {
    auto stated = currencyBeginningAt(last + 1, last);
    if (!stated || belongsToNext(last, *stated)) return std::nullopt;
    return stated;
  }

  // The last item of an amount with blanks such as "1 234 567,89", whose first item is `first`.
  [[nodiscard]] std::size_t lastOfSpaced(std::size_t first) const {
    std::size_t last = first;
    const auto plain = [](const std::string& digits) {
      return digits.find_first_not_of("0123456789") == std::string::npos;
    };
    if (items_[first].text.size() > 3) return first;
    while (plain(items_[last].text) && last + 1 < items_.size()) {
      const Item& next = items_[last + 1];
      const std::size_t whole = std::min(next.text.find_first_of(".,"), next.text.size());
      // A currency behind it makes it no piece: "1 340,00EUR".
      const bool piece = next.isPiece && !currencyBeginningAt(last + 2, last + 1);
      if (next.kind != Item::Kind::number || piece || next.glued || whole != 3) break;
      if (next.begin - items_[last].end > 3) break;
      ++last;
    }
    return last;
  }

  static bool groupsByBlanks(std::string_view code) {
    constexpr std::string_view others =
        "ZAR MZN MAD DZD TND RUB UAH KZT BYN CHF BGN GEL AZN UZS KGS XOF XAF XPF MGA CDF AOA GNF";
    const Currency* const currency = currencyByCode(code);
    return holdsCode(others, code) || (currency != nullptr && currency->pointGroups);
  }

  [[nodiscard]] bool isMultiplied(std::size_t next) const {
    constexpr auto multipliers = std::to_array<std::string_view>(
        {"lakh", "lakhs", "lac",     "lacs",     "crore", "crores", "million", "millions",
         "mln",  "mn",    "billion", "thousand", "k",     "الف",    "مليون",   "mil",
         "juta", "ribu",  "тыс",     "млн",      "bn",    "万",     "萬",      "億",
         "亿",   "千",    "만",      "만원",     "천",    "천원",   "억",      "억원"});
    if (next >= items_.size()) return false;
    const Item& item = items_[next];
    const bool letter = item.glued && (item.text == "m" || item.text == "b" || item.text == "l");
    return letter ||
           std::find(multipliers.begin(), multipliers.end(), item.text) != multipliers.end();
  }

  [[nodiscard]] bool isBareSum(std::size_t number) const {
    const std::string& digits = items_[number].text;
    const bool separated = digits.find_first_of(".,") != std::string::npos;
    if (separated && wordings_.anyEndsAt(items_, number, Marker::own)) return false;
    if (separated) return true;
    std::size_t end = number;
    while (end > 0 && isMark(items_[end - 1], ":-+=.")) --end;
    if (wordings_.anyEndsAt(items_, end, SumRole::amount)) return true;
    return end > 0 && items_[end - 1].text == "by" &&
           (wordings_.anyEndsAt(items_, end, Move::debited) ||
            wordings_.anyEndsAt(items_, end, Move::credited));
  }

  // The extent of a sum around its number.
  struct Extent {
    std::optional<StatedCurrency> currency = {};
    std::size_t last = 0;  // its last item
    bool unclear = false;
    char sign = '\0';
  };

  // "1 234,56" is one number if its currency groups by blanks. Else it is unclear.
  [[nodiscard]] Extent spacedExtent(std::size_t number) const {
    Extent extent{.last = number};
    extent.currency = inFront(number, extent.sign);
    const std::size_t spaced = lastOfSpaced(number);
    if (spaced == number) return extent;
    const auto after = behind(spaced);
    if (!extent.currency && !after) return extent;
    const std::string code = (extent.currency ? *extent.currency : *after).resolvedFor(book_);
    const bool comma = items_[spaced].text.find(',') != std::string::npos;
    if (groupsByBlanks(code) || comma) {
      extent.last = spaced;
    } else {
      extent.unclear = items_[spaced].text.find_first_of(".,") != std::string::npos;
    }
    return extent;
  }

  [[nodiscard]] Extent extentAt(std::size_t number) const {
    Extent extent = spacedExtent(number);
    const bool multiplied = isMultiplied(extent.last + 1);
    const bool piece = isPartOfNumber(items_, number, extent.last) && !isBehindCode(number);
    auto after = behind(multiplied ? extent.last + 1 : extent.last);
    if (extent.currency && after && beginsName(*after)) after.reset();
    extent.unclear = extent.unclear || multiplied || piece;
    constexpr std::size_t oneCode = 3;
    const bool settles = extent.currency && after && extent.currency->codes.size() > oneCode &&
                         extent.currency->mayBe(after->codes);  // "$500 MXN"
    if (settles) extent.currency->codes = after->codes;
    if (!extent.currency && after) {
      extent.currency = after;
      extent.unclear = extent.unclear || followsGroup(items_, number);
    }
    if (after && (settles || extent.currency->begin == after->begin)) extent.last = after->end - 1;
    return extent;
  }

  // Reads the sum around the number at `at` and moves `at` to its last item.
  Item sumAt(std::size_t& at) {
    const std::size_t number = at;
    Item item = items_[number];
    if (isDatePiece(items_, number) || isMaskedBehind(number)) return item;
    const Extent extent = extentAt(number);
    const auto& stated = extent.currency;
    if (!stated && (item.isPiece || !isBareSum(number))) return item;
    // A number within a word is a sum only if the currency is in front of it or glued to it.
    const bool apart = stated && stated->begin > number && !items_[stated->begin].glued;
    if (item.isPiece && apart && !extent.unclear && !isBehindCode(number)) return item;
    if (stated && stated->begin > number && isInCode(number)) return item;
    if (stated && stated->begin < number && isWithinWord(number)) return item;
    item.kind = Item::Kind::sum;
    item.isPiece = false;
    item.sum.sign = extent.sign != '\0' ? extent.sign : signBehind(extent.last);
    for (std::size_t next = number + 1; next <= extent.last; ++next) {
      if (items_[next].kind == Item::Kind::number) item.text += items_[next].text;
    }
    if (stated) {
      item.begin = std::min(item.begin, items_[stated->begin].begin);
      item.sum.currency = stated->resolvedFor(book_);
    }
    item.end = items_[extent.last].end;
    const std::string_view habit = stated ? std::string_view(item.sum.currency) : book_;
    const bool unclear = extent.unclear || isMultiplied(extent.last + 1) ||  // "5 USD million"
                         (!stated && isLastGroup(number));
    if (!unclear) item.sum.minorUnits = minorUnitsOf(item.text, habit);
    at = extent.last;
    return item;
  }

  // "انتقال:750,000-": banks of Iran write the sign behind the amount.
  [[nodiscard]] char signBehind(std::size_t last) const {
    const std::size_t next = last + 1;
    const bool sign = book_ == "IRR" && next < items_.size() && items_[next].glued &&
                      isMark(items_[next], "+-") &&
                      (next + 1 == items_.size() || !items_[next + 1].glued ||
                       items_[next + 1].kind == Item::Kind::lineBreak);
    return sign ? items_[next].text.front() : '\0';
  }

  // "R640.00 RAND VALUE TYRES": behind a sum with its currency, the name of one is a shop's.
  [[nodiscard]] bool beginsName(const StatedCurrency& stated) const {
    constexpr std::size_t code = 3;
    const Item& word = items_[stated.begin];
    return word.capitals && word.text.size() > code && stated.end < items_.size() &&
           items_[stated.end].capitals && !items_[stated.end].startsSentence;
  }

  // "*165*S*6000 RWF transferred": the code of a service is in front of the number.
  [[nodiscard]] bool isBehindCode(std::size_t number) const {
    return number >= 3 && isMark(items_[number - 1], "*") && items_[number - 2].text.size() == 1 &&
           items_[number - 2].kind == Item::Kind::word && isMark(items_[number - 3], "*");
  }

  // "Taka2Go" is a name.
  [[nodiscard]] bool isWithinWord(std::size_t number) const {
    return items_[number].text.size() == 1 && items_[number].glued && number + 1 < items_.size() &&
           items_[number + 1].glued && items_[number + 1].kind == Item::Kind::word &&
           !currencyBeginningAt(number + 1, number) && !isMultiplied(number + 1);
  }

  // Whether the number may be the end of another one: "Rent R6 500,00" in another currency.
  [[nodiscard]] bool isLastGroup(std::size_t number) const {
    constexpr std::size_t group = 3;
    if (number == 0 || items_[number].glued) return false;
    const Item& before = items_[number - 1];
    return before.kind == Item::Kind::number && !before.isPiece && before.text.size() <= group &&
           before.text.find_first_not_of("0123456789") == std::string::npos &&
           items_[number].text.find_first_of(".,") == group;
  }

  // "UFA5LL02QR" is a reference.
  [[nodiscard]] bool isInCode(std::size_t number) const {
    return number >= 2 && items_[number].glued && items_[number - 1].kind == Item::Kind::word &&
           items_[number - 1].glued && items_[number - 2].kind == Item::Kind::number;
  }

  // "TK 0221xxx" is an account.
  [[nodiscard]] bool isMaskedBehind(std::size_t number) const {
    if (number + 1 >= items_.size() || !items_[number + 1].glued) return false;
    const Item& next = items_[number + 1];
    return isMark(next, "*") ||
           (next.kind == Item::Kind::word && next.text.find_first_not_of('x') == std::string::npos);
  }

  Items items_;
  const std::string_view book_;
  const Wordings& wordings_;
  std::size_t taken_ = 0;  // items in front of this one belong to an earlier number
};

}  // namespace

Items withSums(Items items, std::string_view bookCurrency, const Wordings& wordings) {
  return SumReader(std::move(items), bookCurrency, wordings).read();
}

}  // namespace kivo::recognition
