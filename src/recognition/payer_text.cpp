#include "recognition/payer_text.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "recognition/movements.h"

namespace kivo::recognition {
namespace {

bool isSum(const Item& item) { return item.kind == Item::Kind::sum; }

// The first item of the text; absent when a reference's number follows.
std::optional<std::size_t> beginOf(const AnalysedMessage& message, const CapitalWords& words,
                                   const Found& wording) {
  const Items& items = message.items;
  std::size_t at = wording.end;
  while (at < items.size() && isMark(items[at], ":.-")) ++at;
  if (wording.is(Marker::info)) return at;
  if (at >= items.size() || items[at].kind == Item::Kind::number) return std::nullopt;
  const bool code = words.isWord(at) && at + 1 < items.size() && items[at + 1].glued;
  return code ? std::nullopt : std::optional(at);
}

// The text ends with its line or sentence, and in front of a balance, a limit or a reference.
std::size_t endOf(const AnalysedMessage& message, const CapitalWords& words, std::size_t begin) {
  const Items& items = message.items;
  const auto isNext = [&](std::size_t at) {
    const Found* const wording = words.wordingAt(at);
    return wording != nullptr && words.isLabel(at) &&
           (wording->is(SumRole::balance) || wording->is(SumRole::limit) ||
            wording->is(Marker::reference));
  };
  std::size_t end = begin;
  while (end < items.size() && items[end].kind != Item::Kind::lineBreak &&
         (end == begin || !(items[end].startsSentence || isNext(end)))) {
    ++end;
  }
  return end;
}

}  // namespace

bool introducesPayerText(const AnalysedMessage& message, const Found& wording) {
  return wording.is(Marker::info) || wording.is(Marker::reference) ||
         (wording.is(Marker::ends) && message.items[wording.begin].text == "ref");
}

PayerText payerTextBehind(const AnalysedMessage& message, const CapitalWords& words,
                          const Found& wording) {
  const auto begin = beginOf(message, words, wording);
  if (!begin) return {.end = wording.end};
  const std::size_t end = endOf(message, words, *begin);
  const auto itemAt = [&](std::size_t at) {
    return message.items.begin() + static_cast<std::ptrdiff_t>(at);
  };
  const bool stated = std::any_of(message.items.begin(), itemAt(*begin), isSum);
  const bool holdsSum = std::any_of(itemAt(*begin), itemAt(end), isSum);
  const bool movesElsewhere = movesOutside(message.wordings, *begin, end);
  PayerText text{.end = end};
  for (std::size_t at = *begin; at < end; ++at) {
    if (isSum(message.items[at]) && stated) text.places.push_back({at, at + 1, at + 1});
    const Found* const found = words.wordingAt(at);
    if (found == nullptr) continue;
    const Move* const move = found->as<Move>();
    const bool verb = move != nullptr && movementOf(*move).strength >= Strength::verb;
    const bool forges = verb || found->as<Status>() != nullptr || (stated && holdsSum);
    if (movesElsewhere && forges && (move != nullptr || found->as<Status>() != nullptr)) {
      text.places.push_back({at, found->end, found->end});
    } else if (!movesElsewhere && move != nullptr && stated && holdsSum) {
      text.places.push_back({at, at, found->end});
    }
  }
  return text;
}

}  // namespace kivo::recognition
