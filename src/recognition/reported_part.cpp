#include "recognition/reported_part.h"

#include <algorithm>
#include <cstddef>

#include "recognition/movements.h"

namespace kivo::recognition {
namespace {

struct Sentence {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::span<const Found> found = {};
};

std::vector<Sentence> sentencesOf(const Items& items, std::span<const Found> found) {
  std::vector<Sentence> sentences;
  std::size_t wording = 0;
  for (std::size_t at = 0; at < items.size();) {
    Sentence sentence{.begin = at, .end = at + 1};
    while (sentence.end < items.size() && !items[sentence.end].startsSentence) ++sentence.end;
    while (wording < found.size() && found[wording].begin < at) ++wording;
    const std::size_t first = wording;
    while (wording < found.size() && found[wording].begin < sentence.end) ++wording;
    sentence.found = found.subspan(first, wording - first);
    sentences.push_back(sentence);
    at = sentence.end;
  }
  return sentences;
}

bool holds(std::span<const Found> found, Meaning meaning) {
  return std::any_of(found.begin(), found.end(),
                     [meaning](const Found& wording) { return wording.meaning == meaning; });
}

bool reports(Meaning meaning) {
  const Movement* const movement = movementOf(meaning);
  return meaning == Meaning::done || meaning == Meaning::declined ||
         (movement != nullptr && movement->strength >= Strength::verb);
}

// "Pay your bill", "Dear Omar, pay your bill"; but not "Sunny Pay", "Pay: ...".
bool urges(const Items& items, const Found& wording) {
  if (wording.end < items.size() && isMark(items[wording.end], ":")) return false;
  return items[wording.begin].startsSentence || isMark(items[wording.begin - 1], ",;!-");
}

// Whether the sentence speaks of what is to come: "will be debited", but not "was debited, and will
// be shown".
bool isToCome(const Items& items, const Sentence& sentence) {
  for (const Found& wording : sentence.found) {
    if (wording.meaning == Meaning::notDone) return true;
  }
  const bool reported = std::any_of(sentence.found.begin(), sentence.found.end(),
                                    [](const Found& one) { return reports(one.meaning); });
  if (holds(sentence.found, Meaning::planned) &&
      (!reported || holds(sentence.found, Meaning::declined))) {
    return true;
  }
  for (const Found& wording : sentence.found) {
    if (reports(wording.meaning)) return false;
    if (wording.meaning == Meaning::notYet || wording.meaning == Meaning::offer) return true;
    if (wording.meaning == Meaning::urged && urges(items, wording)) return true;
  }
  return false;
}

// "card ending 4821", "am 21.11."
bool numberFollows(const Items& items, std::size_t at) {
  constexpr std::size_t near = 4;
  const std::size_t end = std::min(items.size(), at + near);
  return std::any_of(items.begin() + static_cast<std::ptrdiff_t>(at),
                     items.begin() + static_cast<std::ptrdiff_t>(end), [](const Item& item) {
                       return item.kind == Item::Kind::number ||
                              (item.kind == Item::Kind::sum && item.sum.currency.empty());
                     });
}

}  // namespace

bool announcesACode(const Items& items, std::span<const Found> found) {
  constexpr std::size_t shortestCode = 4;
  for (const Sentence& sentence : sentencesOf(items, found)) {
    if (!holds(sentence.found, Meaning::code)) continue;
    if (!holds(sentence.found, Meaning::warning)) return true;
    for (std::size_t at = sentence.begin; at < sentence.end; ++at) {
      const Item& item = items[at];
      if (item.kind == Item::Kind::number && !item.isPiece && item.text.size() >= shortestCode) {
        return true;
      }
    }
  }
  return false;
}

Items reportedPart(const Items& items, std::span<const Found> found) {
  Items kept;
  for (const Sentence& sentence : sentencesOf(items, found)) {
    if (isToCome(items, sentence)) continue;
    kept.insert(kept.end(), items.begin() + static_cast<std::ptrdiff_t>(sentence.begin),
                items.begin() + static_cast<std::ptrdiff_t>(sentence.end));
  }
  return kept;
}

bool showsEvidence(const Items& items, std::span<const Found> found) {
  for (const Sentence& sentence : sentencesOf(items, found)) {
    if (holds(sentence.found, Meaning::offer)) continue;
    if (holds(sentence.found, Meaning::balance) || holds(sentence.found, Meaning::reference)) {
      return true;
    }
    for (std::size_t at = sentence.begin; at < sentence.end; ++at) {
      if (items[at].kind == Item::Kind::number && items[at].isPiece) return true;
    }
    for (const Found& wording : sentence.found) {
      const bool account = wording.meaning == Meaning::own || wording.meaning == Meaning::ends;
      if (account && numberFollows(items, wording.end)) return true;
    }
  }
  return false;
}

}  // namespace kivo::recognition
