#include "recognition/reported_part.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "recognition/movements.h"

namespace kivo::recognition {
namespace {

bool reports(const Found& wording) {
  const Move* const move = wording.as<Move>();
  return wording.is(Status::done) || wording.is(Status::declined) ||
         (move != nullptr && movementOf(*move).strength >= Strength::verb);
}

// Whether the wording asks the reader: "Pay your bill", "Dear Omar, pay your bill"; but not "Sunny
// Pay", "Pay: ...".
bool urges(const Items& items, const Found& wording) {
  if (wording.end < items.size() && isMark(items[wording.end], ":.")) return false;
  return items[wording.begin].startsSentence || isMark(items[wording.begin - 1], ",;!-");
}

// Whether a number without a currency is near: "card ending 4821", "am 21.11."
bool numberFollows(const Items& items, std::size_t at) {
  constexpr std::size_t near = 4;
  const std::size_t end = std::min(items.size(), at + near);
  return std::any_of(items.begin() + static_cast<std::ptrdiff_t>(at),
                     items.begin() + static_cast<std::ptrdiff_t>(end), [](const Item& item) {
                       return item.kind == Item::Kind::number ||
                              (item.kind == Item::Kind::sum && item.sum.currency.empty());
                     });
}

// Whether the wording is in the heading of an alert: "Explore Card Alert: you spent ...".
bool isInHeading(const Items& items, const Sentence& sentence, const Found& wording) {
  constexpr std::size_t longest = 6;
  constexpr auto kinds = std::to_array<std::string_view>({"alert", "notice", "notification"});
  if (wording.begin != sentence.begin) return false;
  const std::size_t end = std::min(sentence.end, sentence.begin + longest);
  for (std::size_t at = wording.end + 1; at < end; ++at) {
    if (isMark(items[at], ":")) {
      return std::ranges::find(kinds, items[at - 1].text) != kinds.end();
    }
  }
  return false;
}

// Whether the sentence only announces, asks or offers: "will be debited". Behind a report, such
// words do not matter: "was debited, and will be shown".
bool reportsNothing(const Items& items, const Sentence& sentence) {
  // "Your request of AED 910.00 has been processed": the later one counts.
  bool notDone = false;
  for (const Found& wording : sentence.wordings) {
    if (wording.is(Status::notDone)) notDone = true;
    if (wording.is(Status::done)) notDone = false;
  }
  if (notDone) return true;
  const bool reported = std::ranges::any_of(sentence.wordings, reports);
  if (holds(sentence.wordings, Status::planned) &&
      (!reported || holds(sentence.wordings, Status::declined))) {
    return true;
  }
  // "Enjoy our app fern.example A/C 0#12 withdrawn NPR 1,100.00": a headline without a point.
  const bool tellsAccount =
      reported && std::ranges::any_of(sentence.wordings, [&](const Found& wording) {
        return wording.is(Marker::own) && numberFollows(items, wording.end);
      });
  for (const Found& wording : sentence.wordings) {
    if (reports(wording)) return false;
    if ((wording.is(Status::offer) || wording.is(Status::urged)) && tellsAccount) continue;
    if (isInHeading(items, sentence, wording)) continue;
    if (wording.is(Status::notYet) || wording.is(Status::offer)) return true;
    if (wording.is(Status::urged) && urges(items, wording)) return true;
  }
  return false;
}

}  // namespace

bool announcesACode(const AnalysedMessage& message) {
  constexpr std::size_t shortestCode = 4;
  for (const Sentence& sentence : sentencesOf(message)) {
    if (!holds(sentence.wordings, Status::code)) continue;
    if (!holds(sentence.wordings, Status::warning)) return true;
    for (std::size_t at = sentence.begin; at < sentence.end; ++at) {
      const Item& item = message.items[at];
      if (item.kind == Item::Kind::number && !item.isPiece && item.text.size() >= shortestCode) {
        return true;
      }
    }
  }
  return false;
}

Items reportedPart(const AnalysedMessage& message) {
  const auto itemAt = [&](std::size_t at) {
    return message.items.begin() + static_cast<std::ptrdiff_t>(at);
  };
  Items kept;
  for (const Sentence& sentence : sentencesOf(message)) {
    if (reportsNothing(message.items, sentence)) continue;
    kept.insert(kept.end(), itemAt(sentence.begin), itemAt(sentence.end));
  }
  return kept;
}

bool showsEvidence(const AnalysedMessage& message) {
  for (const Sentence& sentence : sentencesOf(message)) {
    if (holds(sentence.wordings, Status::offer)) continue;
    if (holds(sentence.wordings, SumRole::balance) || holds(sentence.wordings, Marker::reference)) {
      return true;
    }
    for (std::size_t at = sentence.begin; at < sentence.end; ++at) {
      const Item& item = message.items[at];
      if (item.kind == Item::Kind::number && item.isPiece) return true;
    }
    for (const Found& wording : sentence.wordings) {
      const bool account = wording.is(Marker::own) || wording.is(Marker::ends);
      if (account && numberFollows(message.items, wording.end)) return true;
    }
  }
  return false;
}

}  // namespace kivo::recognition
