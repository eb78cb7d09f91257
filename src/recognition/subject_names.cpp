#include "recognition/subject_names.h"

#include <algorithm>
#include <cstddef>

#include "recognition/name_text.h"

namespace kivo::recognition {
namespace {

class SubjectNames {
 public:
  SubjectNames(const AnalysedMessage& message, const CapitalWords& words)
      : message_(message), items_(message.items), words_(words) {}

  std::vector<NamePlace> all() {
    for (const Found& wording : message_.wordings) {
      if (namesItsSubject(wording)) addInFront(wording);
    }
    return places_;
  }

 private:
  // Whether the party of the payment is in front of `wording`: "Will Smith sent you".
  static bool namesItsSubject(const Found& wording) {
    return wording.payeePrecedes || wording.is(Move::credited) || wording.is(Move::sent) ||
           wording.is(Move::paid);
  }

  void add(std::size_t begin, std::size_t end) {
    if (begin < end) places_.push_back({begin, end, end});
  }

  // "Refund Fashion sent you #", "debited; Denied Jeans credited": the capitals in front.
  void addInFront(const Found& wording) {
    std::size_t end = wording.begin;
    while (end > 0 && (items_[end - 1].text == "has" || items_[end - 1].text == "was")) --end;
    std::size_t begin = end;
    while (begin > 0 && !items_[begin].startsSentence &&
           (words_.isCapital(begin - 1) || isMark(items_[begin - 1], "&'-.")) &&
           (words_.wordingAt(begin - 1) == nullptr ||
            !words_.wordingAt(begin - 1)->is(Marker::own) ||
            (words_.isSmall(wording.begin) && wording.as<Move>() != nullptr &&
             items_[begin - 1].text == "card" && items_[begin - 1].startsSentence && begin < end &&
             !words_.isInWording(begin)))) {
      --begin;
    }
    while (begin < end && !words_.isCapital(begin)) ++begin;
    const bool sent = wording.payeePrecedes && wording.is(Move::received);
    if (sent && words_.isSmall(wording.begin) && addSubjectWithSum(end)) return;
    if (begin == end || isPronoun(items_[begin].text) || !words_.isSmall(wording.begin)) return;
    const bool apart = items_[begin].startsSentence || isMark(items_[begin - 1], ";,:") ||
                       (items_[begin - 1].text == "and" && wording.is(Move::credited));
    if (wording.payeePrecedes || (apart && words_.hasOwnWord(begin, end))) add(begin, end);
  }

  // "Salary INR 85,000 Paid has sent you Rs 1.00": all of the sentence in front, when it holds a
  // sum and the amount follows.
  bool addSubjectWithSum(std::size_t end) {
    constexpr std::size_t near = 6;
    std::size_t begin = end;
    bool sum = false;
    while (begin > 0 && !(begin < end && items_[begin].startsSentence) &&
           !isMark(items_[begin - 1], ":")) {
      --begin;
      sum = sum || items_[begin].kind == Item::Kind::sum;
    }
    bool follows = false;
    for (std::size_t at = end; at < std::min(end + near, items_.size()) && !follows; ++at) {
      const Found* const wording = words_.wordingAt(at);
      if (wording != nullptr && wording->is(SumRole::balance)) break;
      follows = items_[at].kind == Item::Kind::sum;
    }
    if (sum && follows) add(begin, end);
    return sum && follows;
  }

  const AnalysedMessage& message_;
  const Items& items_;
  const CapitalWords& words_;
  std::vector<NamePlace> places_;
};

}  // namespace

std::vector<NamePlace> subjectNames(const AnalysedMessage& message, const CapitalWords& words) {
  return SubjectNames(message, words).all();
}

}  // namespace kivo::recognition
