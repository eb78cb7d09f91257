#include "recognition/uncased_name.h"

#include <optional>
#include <string_view>

#include "recognition/merchant_categories.h"

namespace kivo::recognition {
namespace {

constexpr std::string_view article = "ال";
constexpr std::string_view conjunction = "و";

class UncasedName {
 public:
  UncasedName(const AnalysedMessage& message, const CapitalWords& words, const Found& introduction,
              std::size_t begin)
      : items_(message.items),
        words_(words),
        bought_(holds(message.wordings, Move::purchase)),
        introduction_(introduction),
        begin_(begin) {}

  [[nodiscard]] std::vector<NamePlace> places() const {
    std::vector<NamePlace> found;
    if (words_.wordingAt(begin_) != nullptr) {
      const std::size_t end = endOfFirstWordings();
      if (end > begin_) found.push_back({begin_, end, end});
    } else if (!words_.isInWording(begin_) && !items_[begin_].text.starts_with(article)) {
      addBehindNoun(found);
    }
    return found;
  }

 private:
  // "AT DENIED JEANS": the wordings in front of a word that is none.
  [[nodiscard]] std::size_t endOfFirstWordings() const {
    const bool shop = introduction_.is(Marker::at) || introduction_.is(Marker::label) ||
                      introduction_.is(Move::purchase) ||
                      (introduction_.is(Marker::from) && bought_);
    std::size_t end = begin_;
    while (end < items_.size() && words_.wordingAt(end) != nullptr &&
           (end == begin_ || !items_[end].startsSentence)) {
      const Found& wording = *words_.wordingAt(end);
      const bool masks = wording.as<Status>() != nullptr ||
                         (wording.as<Move>() != nullptr && shop && !wording.is(Move::machine));
      if (!masks || wording.end <= end) break;
      end = wording.end;
    }
    const bool goesOn = end > begin_ && words_.isWord(end) && words_.wordingAt(end) == nullptr &&
                        !items_[end].startsSentence;
    return goesOn ? end : begin_;
  }

  // "كافيه الساعة 9", "متجر بدون رسوم": behind a word for a shop, wordings are its name.
  void addBehindNoun(std::vector<NamePlace>& found) const {
    std::size_t at = begin_ + 1;
    const bool shop = isShopWord(items_[begin_].text);
    if (shop && words_.isWord(at) && !words_.isInWording(at) && !items_[at].startsSentence) ++at;
    if (at + 1 < items_.size() && items_[at].text == "د" && isMark(items_[at + 1], ".")) at += 2;
    while (const auto end = endOfPart(at, shop)) {
      const Found& wording = *words_.wordingAt(at);
      const bool told = !items_[at].text.starts_with(article) &&
                        (wording.is(Status::declined) || wording.is(Move::refund));
      found.push_back({at, told ? at : *end, *end});
      at = *end;
    }
  }

  // The end of the wording at item `at` if it is part of the name; else absent.
  [[nodiscard]] std::optional<std::size_t> endOfPart(std::size_t at, bool shop) const {
    if (at >= items_.size() || !words_.isWord(at) || items_[at].startsSentence) return std::nullopt;
    const Found* const wording = words_.wordingAt(at);
    if (wording == nullptr || wording->end <= at) return std::nullopt;
    const std::size_t end = wording->end;
    const bool definite = items_[at].text.starts_with(article);
    const bool next = at == begin_ + 1;
    if (next && definite && end == at + 1 && !words_.isLabel(at)) return end;
    if (!shop) return std::nullopt;
    if (next && isHour(at)) return end + 1;
    if (isFollowedByNumber(end)) return std::nullopt;
    if (const Marker* const marker = wording->as<Marker>()) {
      const bool day = *marker == Marker::ends || (next && *marker == Marker::own);
      return definite && day ? std::optional(end) : std::nullopt;
    }
    if (wording->as<SumRole>() != nullptr) return end;
    const bool noun = wording->is(Status::code) || wording->is(Status::offer) ||
                      (next && (wording->is(Status::notYet) || wording->is(Status::planned) ||
                                wording->is(Status::declined) || wording->is(Move::refund)));
    return noun ? std::optional(end) : std::nullopt;
  }

  // "الساعة 9", but not the "الساعة 18:05" of a payment.
  [[nodiscard]] bool isHour(std::size_t at) const {
    constexpr std::size_t longest = 2;
    const std::size_t number = at + 1;
    return items_[at].text == "الساعه" && number < items_.size() &&
           items_[number].kind == Item::Kind::number && !items_[number].isPiece &&
           items_[number].text.size() <= longest;
  }

  // "الرصيد: 90,000", "الحد المتاح هو 300": the wording is a label.
  [[nodiscard]] bool isFollowedByNumber(std::size_t at) const {
    constexpr std::size_t near = 4;
    for (std::size_t next = at; next < items_.size() && next < at + near; ++next) {
      const Item& item = items_[next];
      const Found* const wording = words_.wordingAt(next);
      const bool label = wording != nullptr && wording->as<SumRole>() != nullptr &&
                         !item.text.starts_with(conjunction);
      if (item.startsSentence || (wording != nullptr && !label)) {
        return false;
      }
      if (item.kind == Item::Kind::number || item.kind == Item::Kind::sum) return true;
    }
    return false;
  }

  const Items& items_;
  const CapitalWords& words_;
  const bool bought_;
  const Found& introduction_;
  const std::size_t begin_;
};

}  // namespace

std::vector<NamePlace> uncasedNameBehind(const AnalysedMessage& message, const CapitalWords& words,
                                         const Found& introduction, std::size_t begin) {
  return UncasedName(message, words, introduction, begin).places();
}

}  // namespace kivo::recognition
