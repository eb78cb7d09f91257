#include "recognition/account_and_reference.h"

#include <algorithm>

#include "recognition/movements.h"

namespace kivo::recognition {

using money::Kind;

namespace {

constexpr std::size_t mostDigits = 6;

bool isDigits(const std::string& text) {
  return text.size() >= 2 && text.find_first_not_of("0123456789") == std::string::npos;
}

bool isMask(const Item& item) {
  if (item.kind == Item::Kind::word) return item.text.find_first_not_of('x') == std::string::npos;
  return item.kind == Item::Kind::mark &&
         (item.text.size() > 1 ||
          std::string_view("*#.:-()").find(item.text) != std::string_view::npos);
}

// The digits of an account number at or shortly behind item `at`: "no. XX1234", "1***2222".
std::string digitsBehind(const Items& items, std::size_t at) {
  constexpr std::size_t near = 8;
  std::string digits;
  for (std::size_t skipped = 0; skipped < near && at < items.size(); ++skipped, ++at) {
    const Item& item = items[at];
    if (item.kind == Item::Kind::sum || item.startsSentence) break;
    if (item.kind == Item::Kind::number) {
      if (isDigits(item.text)) digits = item.text;
      const bool goesOn = at + 2 < items.size() && items[at + 1].glued && isMask(items[at + 1]);
      if (!goesOn) break;
      continue;
    }
    const bool linking = item.text == "no" || item.text == "number" || item.text == "ending" ||
                         item.text == "in" || item.text == "with" || item.text == "card" ||
                         item.text == "account" || item.text == "debit" || item.text == "credit" ||
                         item.text == "رقم" || item.text == "المنتهيه" || item.text == "ب" ||
                         item.text == "visa" || item.text == "acc" || item.text == "الجاري";
    if (!isMask(item) && !linking && !(item.glued && item.kind == Item::Kind::word)) break;
  }
  return digits.size() > mostDigits ? digits.substr(digits.size() - mostDigits) : digits;
}

}  // namespace

std::string ownAccount(const AnalysedMessage& message, Kind kind) {
  const Items& items = message.items;
  const auto isOwnSide = [&](const Found& wording) {
    const std::string before = wording.begin == 0 ? "" : items[wording.begin - 1].text;
    const std::string& itself = items[wording.begin].text;
    const auto says = [&](std::string_view word) { return before == word || itself == word; };
    if (says("your")) return true;
    return kind == Kind::income ? says("to") || says("in") || says("into")
                                : says("from") || says("using");
  };
  std::string first;
  for (const Found& wording : message.wordings) {
    const bool side = wording.is(Marker::own) || wording.is(Marker::to) ||
                      wording.is(Marker::from) || wording.is(Marker::ends);
    if (!side || !isOwnSide(wording)) continue;
    std::string digits = digitsBehind(items, wording.end);
    if (!digits.empty()) return digits;
  }
  for (const Found& wording : message.wordings) {
    if (!wording.is(Marker::own)) continue;
    std::string digits = digitsBehind(items, wording.end);
    if (digits.empty()) continue;
    const std::string before = wording.begin == 0 ? "" : items[wording.begin - 1].text;
    const bool other = kind == Kind::income ? before == "from" : before == "to";
    if (!other) return digits;
    if (first.empty()) first = digits;
  }
  if (!first.empty()) return first;
  for (std::size_t at = 1; at < items.size(); ++at) {  // "x7477", "**1234"
    const Item& mask = items[at - 1];
    const Item& next = items[at];
    if (isMask(mask) && !isMark(mask, ".:-") && next.glued && next.kind == Item::Kind::number &&
        next.isPiece && isDigits(next.text)) {
      return next.text.size() > mostDigits ? next.text.substr(next.text.size() - mostDigits)
                                           : next.text;
    }
  }
  return {};
}

bool reachesAccount(const AnalysedMessage& message, const std::string& account,
                    const Wordings& wordings) {
  const Items& items = message.items;
  const auto leaves = [&](const Found& wording) {
    const bool isSide = wording.is(Marker::own) || wording.is(Marker::from);
    if (!isSide || digitsBehind(items, wording.end) != account) return false;
    std::size_t at = wording.begin;
    if (at > 0 && items[at - 1].text == "your") --at;  // "from your account XX8801"
    return items[wording.begin].text == "from" || (at > 0 && items[at - 1].text == "from");
  };
  if (!account.empty() && std::ranges::any_of(message.wordings, leaves)) return false;
  // Also within a longer wording: "payment has been credited to your credit card".
  const auto says = [&](Move move) {
    if (holds(message.wordings, move)) return true;
    return std::ranges::any_of(message.wordings, [&](const Found& wording) {
      const Move* const meant = wording.as<Move>();
      if (meant == nullptr || movementOf(*meant).kind != Kind::transfer) return false;
      for (std::size_t end = wording.begin + 1; end <= wording.end; ++end) {
        if (wordings.anyEndsAt(items, end, move)) return true;
      }
      return false;
    });
  };
  if (says(Move::debited) || says(Move::sent) || says(Move::withdrew)) return false;
  return says(Move::credited) || says(Move::received);
}

std::string referenceIn(const AnalysedMessage& message) {
  const Items& items = message.items;
  constexpr std::size_t longest = 40;
  for (const Found& wording : message.wordings) {
    if (!wording.is(Marker::reference)) continue;
    std::size_t at = wording.end;
    while (at < items.size() &&
           (items[at].kind == Item::Kind::mark || items[at].text == "no" ||
            items[at].text == "number" || items[at].text == "is" || items[at].text == "id")) {
      ++at;
    }
    if (at >= items.size() || items[at].kind == Item::Kind::lineBreak) continue;
    std::size_t last = at;
    bool digits = items[at].kind == Item::Kind::number;
    while (
        last + 1 < items.size() && items[last + 1].glued &&
        (items[last + 1].kind == Item::Kind::number || items[last + 1].kind == Item::Kind::word)) {
      ++last;
      digits = digits || items[last].kind == Item::Kind::number;
    }
    if (!digits) continue;
    const std::string_view reference =
        message.text.substr(items[at].begin, items[last].end - items[at].begin);
    if (reference.size() <= longest) return std::string(reference);
  }
  return {};
}

}  // namespace kivo::recognition
