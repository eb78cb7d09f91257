#include "recognition/templates/teaching.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "recognition/amount_digits.h"
#include "recognition/message_items.h"
#include "recognition/stated_sums.h"
#include "recognition/templates/figures.h"
#include "recognition/templates/message_text.h"

namespace kivo::recognition {

using money::CurrencyCode;
using money::Money;
using money::moneyFromText;

namespace {

using Part = CannotTeach::Part;

// A part of a message that a placeholder replaces.
struct Place {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string_view placeholder = {};

  bool operator==(const Place&) const = default;
  [[nodiscard]] bool overlaps(const Place& other) const {
    return begin < other.end && other.begin < end;
  }
};

// Returns the numbers between two positions of `form`, each as long as possible.
std::vector<Place> numbersIn(std::string_view form, std::size_t begin, std::size_t end) {
  std::vector<Place> found;
  for (std::size_t at = begin; at < end; ++at) {
    std::size_t last = at;
    for (const MessageNumber& number : numbersAt(form, at)) {
      if (number.end <= end) last = std::max(last, number.end);
    }
    if (last == at) continue;
    found.push_back({.begin = at, .end = last, .placeholder = "{amount}"});
    at = last - 1;
  }
  return found;
}

// Returns the places of the amount in `form`: the only number in each occurrence of `given`.
std::vector<Place> amountPlaces(std::string_view form, std::string_view given) {
  std::vector<Place> places;
  if (numbersIn(given, 0, given.size()).size() != 1) return places;
  for (std::size_t begin = form.find(given); begin != form.npos;
       begin = form.find(given, begin + 1)) {
    const auto numbers = numbersIn(form, begin, begin + given.size());
    const bool isNew = numbers.size() == 1 && (places.empty() || places.back() != numbers.front());
    if (isNew) places.push_back(numbers.front());
  }
  return places;
}

bool isWordByte(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  return byte >= 0x80 || std::isalnum(byte) != 0;
}

// Returns the occurrences of `payee` in `form` outside `amount` that are whole words, else the
// first one that is a part of a word. The first becomes {payee}, the others {any}.
std::vector<Place> payeePlaces(std::string_view form, std::string_view payee,
                               const std::optional<Place>& amount) {
  std::vector<Place> words;
  std::vector<Place> parts;
  if (payee.empty()) return words;
  for (std::size_t begin = form.find(payee); begin != form.npos;
       begin = form.find(payee, begin + 1)) {
    const std::size_t end = begin + payee.size();
    const Place place{.begin = begin, .end = end, .placeholder = "{any}"};
    const bool overlaps =
        (amount && amount->overlaps(place)) || (!words.empty() && words.back().overlaps(place));
    if (overlaps) continue;
    const bool begins =
        place.begin == 0 || !isWordByte(form, place.begin - 1) || !isWordByte(form, place.begin);
    const bool ends = end == form.size() || !isWordByte(form, end) || !isWordByte(form, end - 1);
    if (begins && ends) words.push_back(place);
    if (parts.empty()) parts.push_back(place);
  }
  if (words.empty()) words = std::move(parts);
  if (!words.empty()) words.front().placeholder = "{payee}";
  return words;
}

// Returns `form` with placeholders for `places` and for the other figures.
std::string patternText(std::string_view form, std::vector<Place> places) {
  std::sort(places.begin(), places.end(),
            [](const Place& one, const Place& other) { return one.begin < other.begin; });
  std::string pattern;
  std::size_t at = 0;
  for (const Place& place : places) {
    pattern += withoutFigures(form.substr(at, place.begin - at),
                              {.behindPlaceholder = at > 0, .beforePlaceholder = true});
    pattern += place.placeholder;
    at = place.end;
  }
  return pattern + withoutFigures(form.substr(at), {.behindPlaceholder = at > 0});
}

// Returns the currency that `form` states next to the number at `place`; absent without one.
std::optional<CurrencyCode> statedCurrency(std::string_view form, const Place& place,
                                           const CurrencyCode& bookCurrency) {
  for (const Item& item : withSums(itemsOf(form), bookCurrency.text())) {
    if (item.kind == Item::Kind::sum && item.begin <= place.begin && place.end <= item.end) {
      return CurrencyCode::fromText(item.sum.currency);
    }
  }
  return std::nullopt;
}

// Returns the minor units that the number at `place` states.
std::optional<std::int64_t> unitsAt(std::string_view form, const Place& place,
                                    const CurrencyCode& currency) {
  std::string digits(form.substr(place.begin, place.end - place.begin));
  std::erase(digits, ' ');
  return minorUnitsOf(digits, currency.text());
}

// Returns the places of the amounts in `form` that state the sum `given`, such as "1,189.50", in
// `currency`, or in the currency beside each when that is absent.
std::vector<Place> placesOfSum(std::string_view form, std::string_view given,
                               std::optional<CurrencyCode> currency,
                               const CurrencyCode& bookCurrency) {
  std::vector<Place> places;
  for (const Place& number : numbersIn(form, 0, form.size())) {
    const auto stated = currency ? currency : statedCurrency(form, number, bookCurrency);
    const CurrencyCode code = stated.value_or(bookCurrency);
    const auto sum = moneyFromText(given, code);
    if (sum && unitsAt(form, number, code) == sum->minorUnits) places.push_back(number);
  }
  return places;
}

// The places in the message of the parts that the user named.
struct NamedPlaces {
  std::optional<Place> amount = {};
  std::vector<Place> all = {};
};

// Throws CannotTeach when a part is missing.
NamedPlaces findNamed(std::string_view form, const TaughtParts& parts,
                      const CurrencyCode& bookCurrency) {
  NamedPlaces named;
  if (parts.kind) {
    const std::string given = templateForm(parts.amount);
    auto stated = amountPlaces(form, given);
    if (stated.empty()) stated = placesOfSum(form, given, parts.currency, bookCurrency);
    if (stated.empty()) {
      throw CannotTeach(
          Part::amount,
          "has to be one number of the message, as it is there or such as 1,189.50: commas "
          "only between thousands");
    }
    if (stated.size() > 1) {
      throw CannotTeach(Part::amount,
                        "is in the message more than once; give it with the words beside it");
    }
    named.amount = stated.front();
    named.all.push_back(*named.amount);
  }
  const std::string payee = templateForm(parts.payee);
  auto names = payeePlaces(form, payee, named.amount);
  if (names.empty() && !payee.empty()) {
    throw CannotTeach(Part::payee, "has to be a part of the message, as it is there");
  }
  if (!parts.kind && !names.empty()) names.front().placeholder = "{any}";
  named.all.insert(named.all.end(), names.begin(), names.end());
  return named;
}

MessagePattern parsed(std::string_view text) {
  try {
    return MessagePattern::parse(text);
  } catch (const InvalidPattern& invalid) {
    throw CannotTeach(Part::message, invalid.what());
  }
}

}  // namespace

MessageTemplate teach(std::string_view message, const TaughtParts& parts,
                      const CurrencyCode& bookCurrency) {
  const std::string form = templateForm(message);
  NamedPlaces named = findNamed(form, parts, bookCurrency);
  const std::string text = patternText(form, std::move(named.all));
  MessageTemplate made{.text = text, .pattern = parsed(text), .kind = parts.kind};
  const auto fit = made.pattern.fit(form);
  if (!fit) throw CannotTeach(Part::message, "its wording is too irregular");
  if (fit->amounts.size() > 1) {
    throw CannotTeach(Part::amount, "cannot be told from the other numbers by the words beside it");
  }
  if (parts.kind && fit->payee != templateForm(parts.payee)) {
    throw CannotTeach(Part::payee, "cannot be told from the words beside it");
  }
  if (named.amount) {
    made.currency =
        parts.currency ? parts.currency : statedCurrency(form, *named.amount, bookCurrency);
    if (!made.currency) made.currency = bookCurrency;
  }
  return made;
}

std::string numberFor(std::string_view message, const Money& sum) {
  const std::string form = templateForm(message);
  std::string found;
  for (const Place& number : numbersIn(form, 0, form.size())) {
    if (unitsAt(form, number, sum.currency) != sum.minorUnits) continue;
    if (!found.empty()) return "";
    found = form.substr(number.begin, number.end - number.begin);
  }
  return found;
}

std::string firstSum(std::string_view message, const CurrencyCode& bookCurrency) {
  const std::string form = templateForm(message);
  for (const Item& item : withSums(itemsOf(form), bookCurrency.text())) {
    if (item.kind != Item::Kind::sum) continue;
    const auto numbers = numbersIn(form, item.begin, item.end);
    if (numbers.size() != 1) continue;
    const Place& number = numbers.front();
    std::string text = form.substr(number.begin, number.end - number.begin);
    return amountPlaces(form, text).size() == 1 ? text : "";
  }
  return "";
}

bool namesPayee(std::string_view message, std::string_view payee) {
  return !payeePlaces(templateForm(message), templateForm(payee), std::nullopt).empty();
}

}  // namespace kivo::recognition
