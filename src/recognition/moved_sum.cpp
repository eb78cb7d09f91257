#include "recognition/moved_sum.h"

#include <algorithm>
#include <cstdint>

#include "recognition/movements.h"

namespace kivo::recognition {
namespace {

enum class Part { moved, balance, charge, aside };

Part partOf(SumRole role) {
  switch (role) {
    case SumRole::balance:
      return Part::balance;
    case SumRole::charge:
    case SumRole::total:
      return Part::charge;
    case SumRole::limit:
    case SumRole::aside:
      return Part::aside;
    case SumRole::amount:
    case SumRole::equivalent:
      break;
  }
  return Part::moved;
}

// Whether the wording is the "Balance" of "using Tulip Balance successful at ...": the means of a
// payment, which no number follows.
bool isMeans(const Items& items, const Found& wording) {
  if (!wording.is(SumRole::balance) || wording.begin == 0) return false;
  const Item& before = items[wording.begin - 1];
  const Item& itself = items[wording.begin];
  if (before.kind != Item::Kind::word || itself.startsSentence || wording.end >= items.size()) {
    return false;
  }
  const Item& behind = items[wording.end];
  return behind.kind == Item::Kind::word && !behind.startsSentence &&
         (behind.text == "by" || behind.text.starts_with("success"));
}

// The part of the sum beside `wording`; absent when the wording does not tell.
std::optional<Part> partBy(const Items& items, const Found& wording) {
  if (isMeans(items, wording)) return std::nullopt;
  if (wording.is(Move::fee)) return Part::charge;
  if (const SumRole* const role = wording.as<SumRole>()) return partOf(*role);
  const Move* const move = wording.as<Move>();
  const bool tells = move != nullptr && movementOf(*move).strength >= Strength::verb;
  return tells ? std::optional(Part::moved) : std::nullopt;
}

// Whether the items from `begin` to `end` are in one sentence. A label on a line of its own belongs
// to the sum on the next line.
bool inOneSentence(const Items& items, std::size_t begin, std::size_t end) {
  bool onlyLabel = true;
  for (std::size_t at = begin; at < end; ++at) {
    onlyLabel = onlyLabel && (items[at].kind == Item::Kind::lineBreak || items[at].text == ":");
  }
  if (onlyLabel) return true;
  for (std::size_t at = begin; at <= end; ++at) {
    if (items[at].startsSentence) return false;
  }
  return true;
}

class Sums {
 public:
  Sums(const AnalysedMessage& message, std::string_view book)
      : message_(message), items_(message.items), book_(book) {
    for (std::size_t at = 0; at < items_.size(); ++at) {
      if (items_[at].kind == Item::Kind::sum && !isZero(at)) sums_.push_back(at);
    }
  }

  [[nodiscard]] SumParts parts() const {
    SumParts result;
    std::vector<std::size_t> moved;
    std::vector<std::size_t> charges;
    for (std::size_t index = 0; index < sums_.size(); ++index) {
      const Part part = partOfSum(index);
      if (part == Part::moved) moved.push_back(sums_[index]);
      if (part == Part::charge) charges.push_back(sums_[index]);
      if (part == Part::balance && !result.balance) result.balance = sums_[index];
    }
    preferTotal(moved, charges);
    if (std::ranges::any_of(charges, [this](std::size_t sum) { return isSigned(sum); })) {
      std::erase_if(moved, [this](std::size_t sum) { return !isSigned(sum) && !isExplained(sum); });
    }
    if (moved.empty()) moved = charges;
    dropUnexplained(moved);
    dropSumsWithoutMovement(moved);
    // When some of them have a currency, those without one are not money.
    const auto bare = [this](std::size_t at) { return items_[at].sum.currency.empty(); };
    if (!std::all_of(moved.begin(), moved.end(), bare)) {
      // "Debited 34.60 at KIOSK USD 9000": the bare one may be the amount.
      const std::size_t first = moved.front();
      result.unclear = bare(first) && (isSigned(first) || followsMovement(first));
      std::erase_if(moved, bare);
    }
    if (!moved.empty()) choose(moved, result);
    return result;
  }

 private:
  // "COST 6,557.38, VAT 1,180.33, TOTAL 7,737.71": the total, if it is the largest of three sums or
  // more, the sum of the others, or named by more than "total".
  void preferTotal(std::vector<std::size_t>& moved, const std::vector<std::size_t>& charges) const {
    for (const std::size_t sum : charges) {
      const Found* const label = totalOf(sum);
      if (label == nullptr || !items_[sum].sum.minorUnits) continue;
      std::vector<std::size_t> others = moved;
      others.insert(others.end(), charges.begin(), charges.end());
      std::erase(others, sum);
      std::int64_t rest = *items_[sum].sum.minorUnits;
      const bool largest = std::ranges::all_of(others, [&](std::size_t other) {
        const std::int64_t part = items_[other].sum.minorUnits.value_or(0);
        rest -= std::min(rest, part);
        return part <= *items_[sum].sum.minorUnits;
      });
      const bool itemised = others.size() > 1 || (others.size() == 1 && rest == 0);
      if (!others.empty() && largest && (itemised || label->end > label->begin + 1)) moved = {sum};
    }
  }

  // The wording that calls `sum` a total, the last one in front of it; null when another is last.
  [[nodiscard]] const Found* totalOf(std::size_t sum) const {
    const Found* last = nullptr;
    for (const Found& wording : message_.wordings) {
      if (wording.end <= sum && partBy(items_, wording)) last = &wording;
    }
    const bool total =
        last != nullptr && last->is(SumRole::total) && inOneSentence(items_, last->end, sum);
    return total ? last : nullptr;
  }

  // Beside a sum with a sign, a sum that no wording explains did not move: "-150.00 ... Kaldyk
  // summa:84120.40".
  void dropUnexplained(std::vector<std::size_t>& moved) const {
    if (std::ranges::count_if(moved, [this](std::size_t sum) { return isSigned(sum); }) != 1)
      return;
    std::erase_if(moved, [&](std::size_t sum) { return !isSigned(sum) && !isExplained(sum); });
  }

  [[nodiscard]] bool isSigned(std::size_t sum) const { return items_[sum].sum.sign != '\0'; }

  [[nodiscard]] bool isExplained(std::size_t sum) const {
    return std::ranges::any_of(message_.wordings, [&](const Found& wording) {
      const bool said = partBy(items_, wording).has_value();
      return said && (wording.end <= sum ? inOneSentence(items_, wording.end, sum)
                                         : inOneSentence(items_, sum + 1, wording.begin));
    });
  }

  // Whether a wording of a movement is in front of `sum`, which is no day and month: "05.03".
  [[nodiscard]] bool followsMovement(std::size_t sum) const {
    constexpr std::size_t dayAndMonth = 5;
    const std::string& digits = items_[sum].text;
    if (digits.size() <= dayAndMonth && digits.find('.') != std::string::npos) return false;
    return std::ranges::any_of(message_.wordings, [&](const Found& wording) {
      return wording.as<Move>() != nullptr && wording.end <= sum &&
             inOneSentence(items_, wording.end, sum);
    });
  }

  [[nodiscard]] bool isZero(std::size_t at) const { return items_[at].sum.minorUnits == 0; }

  [[nodiscard]] Part partOfSum(std::size_t index) const {
    const std::size_t sum = sums_[index];
    const std::size_t previous = index == 0 ? 0 : sums_[index - 1];
    const auto behind = partSaidBehind(index);
    if (behind && *behind != Part::moved) return *behind;
    Part part = Part::moved;
    for (const Found& wording : message_.wordings) {
      if (wording.begin < previous || wording.end > sum) continue;
      const auto said = partBy(items_, wording);
      if (!said || !inOneSentence(items_, wording.end, sum)) continue;
      part = *said;
    }
    return part;
  }

  // "Bought EGP 20.00. You now own EGP 480.00": a sum in a sentence without a movement is not
  // another candidate beside one in a sentence with a movement.
  void dropSumsWithoutMovement(std::vector<std::size_t>& moved) const {
    if (moved.size() < 2) return;
    const std::vector<bool> speaks = itemsOfSpeakingSentences();
    auto said =
        std::find_if(moved.begin(), moved.end(), [&](std::size_t sum) { return speaks[sum]; });
    const bool card = holds(message_.wordings, Marker::own);
    if (said == moved.end() && card && !inOneSentence(items_, moved[0], moved[1])) {
      said = std::next(moved.begin());
    }
    moved.erase(std::remove_if(said, moved.end(), [&](std::size_t sum) { return !speaks[sum]; }),
                moved.end());
  }

  // For each item, whether its sentence has a wording of a movement or an amount.
  [[nodiscard]] std::vector<bool> itemsOfSpeakingSentences() const {
    const auto tells = [](const Found& wording) {
      return wording.is(SumRole::amount) || wording.as<Move>() != nullptr;
    };
    std::vector<bool> speaks;
    for (const Sentence& sentence : sentencesOf(message_)) {
      speaks.resize(sentence.end, std::ranges::any_of(sentence.wordings, tells));
    }
    return speaks;
  }

  // The part by the words behind the sum: "EGP 5,430.10 is your available balance". Absent when
  // they introduce the next number.
  [[nodiscard]] std::optional<Part> partSaidBehind(std::size_t index) const {
    constexpr std::size_t near = 4;
    const std::size_t sum = sums_[index];
    for (const Found& wording : message_.wordings) {
      if (wording.begin <= sum) continue;
      if (index + 1 < sums_.size() && wording.begin > sums_[index + 1]) break;
      if (wording.begin > sum + near || !inOneSentence(items_, sum + 1, wording.begin)) break;
      const auto said = partBy(items_, wording);
      if (!said) continue;
      if (introducesNumber(wording)) return std::nullopt;
      return said;
    }
    return std::nullopt;
  }

  // "Avl Bal 5521": the words belong to the number behind them.
  [[nodiscard]] bool introducesNumber(const Found& wording) const {
    constexpr std::size_t near = 5;  // a Chinese, Korean or Thai character is less than a word
    std::size_t words = 0;
    for (std::size_t at = wording.end; at < items_.size() && words < near; ++at) {
      if (!isUnspaced(items_[at].text)) ++words;
      const bool ends = at + 1 == items_.size() || items_[at + 1].startsSentence;
      if (isMark(items_[at], ".") && ends) return false;
      const bool number = items_[at].kind == Item::Kind::number && !items_[at].isPiece;
      if (number || items_[at].kind == Item::Kind::sum) return true;
    }
    return false;
  }

  [[nodiscard]] bool isInBookCurrency(std::size_t at) const {
    const std::string& currency = items_[at].sum.currency;
    return currency.empty() || currency == book_;
  }

  // The bank states the same sum in two currencies: "USD 20.00 (EGP 980.00)".
  [[nodiscard]] bool isEquivalent(std::size_t one, std::size_t other) const {
    for (const Found& wording : message_.wordings) {
      if (wording.is(SumRole::equivalent) && wording.begin > one && wording.end <= other) {
        return true;
      }
    }
    constexpr std::size_t nearest = 3;
    if (other - one > nearest) return false;
    return std::all_of(items_.begin() + static_cast<std::ptrdiff_t>(one) + 1,
                       items_.begin() + static_cast<std::ptrdiff_t>(other), [](const Item& item) {
                         return item.kind == Item::Kind::mark &&
                                std::string_view("(/=[~").find(item.text) != std::string_view::npos;
                       });
  }

  void choose(const std::vector<std::size_t>& moved, SumParts& result) const {
    const std::size_t first = moved.front();
    result.moved = first;
    for (const std::size_t other : moved) {
      if (other == first) continue;
      const Sum& one = items_[*result.moved].sum;
      const Sum& two = items_[other].sum;
      if (one.currency == two.currency && one.minorUnits == two.minorUnits) continue;
      if (isInBookCurrency(first) != isInBookCurrency(other) && isEquivalent(first, other)) {
        if (!isInBookCurrency(first)) result.moved = other;
        continue;
      }
      result.unclear = true;
    }
    if (!items_[*result.moved].sum.minorUnits) result.unclear = true;
  }

  const AnalysedMessage& message_;
  const Items& items_;
  const std::string_view book_;
  std::vector<std::size_t> sums_;
};

}  // namespace

SumParts partsOfSums(const AnalysedMessage& message, std::string_view bookCurrency) {
  return Sums(message, bookCurrency).parts();
}

}  // namespace kivo::recognition
