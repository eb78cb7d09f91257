#include "recognition/templates/message_pattern.h"

#include <algorithm>
#include <span>
#include <utility>

#include "recognition/templates/literal_search.h"
#include "recognition/templates/message_text.h"

namespace kivo::recognition {
namespace {

std::string reversedText(std::string_view text) { return {text.rbegin(), text.rend()}; }

bool isLetter(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         static_cast<unsigned char>(byte) >= 0x80;
}

// Returns for each position of `text` whether the number of {amount} may begin there, that is,
// whether the pattern before {amount}, `literals`, matches the text before that position.
std::vector<bool> placesBehind(std::string_view text, std::span<const std::string> literals) {
  std::vector<bool> places(text.size() + 1, false);
  const std::string& last = literals.back();
  std::size_t least = 0;  // where the last literal may begin
  if (literals.size() > 1) {
    const auto front = shortestPrefix(text, literals.first(literals.size() - 1));
    if (!front) return places;
    least = *front + 1;
  }
  forEachEnd(text, last, [&](std::size_t end) {
    const std::size_t begin = end - last.size();
    if (literals.size() == 1 && begin > 0) return false;
    if (begin >= least) places[end] = true;
    return true;
  });
  return places;
}

}  // namespace

// A part of a message, and the range of literals that it has to match.
struct MessagePattern::Range {
  std::string_view text;
  std::string_view reversed;
  std::size_t first = 0;
  std::size_t last = 0;
};

MessagePattern::Parsed MessagePattern::parse(std::string_view text) {
  constexpr std::string_view unknown =
      "{amount}, {payee} and {any} are all placeholders; a brace itself is written {{";
  const std::string form = templateForm(text);
  std::string_view rest = form;
  MessagePattern pattern;
  std::string literal;
  while (!rest.empty()) {
    if (rest.front() != '{' || rest.starts_with("{{")) {
      literal += rest.front();
      rest.remove_prefix(rest.front() == '{' ? 2 : 1);
      continue;
    }
    const std::string_view name = rest.substr(0, rest.find('}') + 1);
    const std::size_t place = pattern.literals_.size();
    auto* const single = name == "{amount}"  ? &pattern.amount_
                         : name == "{payee}" ? &pattern.payee_
                                             : nullptr;
    if (single == nullptr && name != "{any}") return {.error = std::string(unknown)};
    if (single != nullptr && single->has_value()) {
      return {.error = "{amount} and {payee} may each be there once"};
    }
    if (single != nullptr) *single = place;
    if (place > 0 && literal.empty()) {
      return {.error = "two placeholders touch; there must be text between them"};
    }
    pattern.literals_.push_back(std::exchange(literal, ""));
    rest.remove_prefix(name.size());
  }
  pattern.literals_.push_back(std::move(literal));
  if (std::none_of(pattern.literals_.begin(), pattern.literals_.end(), [](const std::string& one) {
        return std::any_of(one.begin(), one.end(), isLetter);
      })) {
    return {.error = "a template needs a word beside its placeholders"};
  }
  for (auto one = pattern.literals_.rbegin(); one != pattern.literals_.rend(); ++one) {
    pattern.backwards_.push_back(reversedText(*one));
  }
  return {.pattern = std::move(pattern)};
}

std::string MessagePattern::escaped(std::string_view text) {
  std::string pattern;
  for (const char character : text) {
    pattern += character;
    if (character == '{') pattern += '{';
  }
  return pattern;
}

std::optional<PatternFit> MessagePattern::fit(std::string_view message) const {
  const std::string reversed = reversedText(message);
  if (amount_) return fitWithAmount(message, reversed);
  auto payee = payeeIn({.text = message, .reversed = reversed, .last = literals_.size() - 1});
  if (!payee) return std::nullopt;
  return PatternFit{.amounts = {}, .payee = *std::move(payee)};
}

// Matches as little as possible before and after {payee}, so that {payee} gets the rest. Without
// {payee} it does not matter how the placeholders share the text.
std::optional<std::string> MessagePattern::payeeIn(const Range& range) const {
  if (range.first == range.last) {
    return range.text == literals_[range.first] ? std::optional<std::string>("") : std::nullopt;
  }
  const bool isHere = payee_ && *payee_ >= range.first && *payee_ < range.last;
  const std::size_t middle = isHere ? *payee_ : range.first;
  const std::span<const std::string> literals(literals_);
  const std::span<const std::string> backwards(backwards_);
  const auto front =
      shortestPrefix(range.text, literals.subspan(range.first, middle - range.first + 1));
  const auto back = shortestPrefix(
      range.reversed, backwards.subspan(literals_.size() - 1 - range.last, range.last - middle));
  if (!front || !back || *front + *back >= range.text.size()) return std::nullopt;
  if (!isHere) return "";
  return std::string(range.text.substr(*front, range.text.size() - *back - *front));
}

std::optional<PatternFit> MessagePattern::fitWithAmount(std::string_view message,
                                                        const std::string& reversed) const {
  const std::size_t length = message.size();
  const auto before =
      placesBehind(message, std::span<const std::string>(literals_).first(*amount_ + 1));
  const auto behind = placesBehind(
      reversed, std::span<const std::string>(backwards_).first(literals_.size() - 1 - *amount_));
  PatternFit fit;
  std::size_t begin = 0;
  std::size_t end = 0;
  for (std::size_t at = 0; at < length; ++at) {
    if (!before[at]) continue;
    for (MessageNumber& number : numbersAt(message, at)) {
      if (!behind[length - number.end]) continue;
      fit.amounts.push_back(std::move(number.digits));
      if (fit.amounts.size() > 1) return fit;
      begin = at;
      end = number.end;
    }
  }
  if (fit.amounts.empty()) return std::nullopt;
  if (!payee_) return fit;
  const std::string_view reversedView = reversed;
  const Range range =
      *payee_ < *amount_
          ? Range{message.substr(0, begin), reversedView.substr(length - begin), 0, *amount_}
          : Range{message.substr(end), reversedView.substr(0, length - end), *amount_ + 1,
                  literals_.size() - 1};
  fit.payee = payeeIn(range).value_or("");
  return fit;
}

}  // namespace kivo::recognition
