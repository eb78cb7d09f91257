#include "recognition/templates/message_pattern.h"

#include <algorithm>
#include <span>
#include <utility>

#include "recognition/templates/message_text.h"

namespace kivo::recognition {
namespace {

bool isLetter(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         static_cast<unsigned char>(byte) >= 0x80;
}

using Literals = std::span<const std::string>;

// The end of the shortest front of `text` that begins with the first of `literals`, ends with the
// last, and has all in this order with at least one byte between two of them; absent without one. A
// message is short (`longestMessage`), so a search that compares each place with the whole literal
// takes well below a millisecond.
std::optional<std::size_t> endOfShortestFront(std::string_view text, Literals literals) {
  if (!text.starts_with(literals.front())) return std::nullopt;
  std::size_t end = literals.front().size();
  for (const std::string& literal : literals.subspan(1)) {
    const std::size_t begin = text.find(literal, end + 1);
    if (begin == std::string_view::npos) return std::nullopt;
    end = begin + literal.size();
  }
  return end;
}

// The begin of the shortest back of `text` with all `literals`, in the same way.
std::optional<std::size_t> beginOfShortestBack(std::string_view text, Literals literals) {
  if (!text.ends_with(literals.back())) return std::nullopt;
  std::size_t begin = text.size() - literals.back().size();
  for (std::size_t at = literals.size() - 1; at-- > 0;) {
    const std::size_t length = literals[at].size();
    if (begin <= length) return std::nullopt;
    begin = text.rfind(literals[at], begin - 1 - length);
    if (begin == std::string_view::npos) return std::nullopt;
  }
  return begin;
}

}  // namespace

MessagePattern MessagePattern::parse(std::string_view text) {
  constexpr const char* unknown =
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
    if (single == nullptr && name != "{any}") throw InvalidPattern(unknown);
    if (single != nullptr && single->has_value()) {
      throw InvalidPattern("{amount} and {payee} may each be there once");
    }
    if (single != nullptr) *single = place;
    if (place > 0 && literal.empty()) {
      throw InvalidPattern("two placeholders touch; there must be text between them");
    }
    pattern.literals_.push_back(std::exchange(literal, ""));
    rest.remove_prefix(name.size());
  }
  pattern.literals_.push_back(std::move(literal));
  if (std::none_of(pattern.literals_.begin(), pattern.literals_.end(), [](const std::string& one) {
        return std::any_of(one.begin(), one.end(), isLetter);
      })) {
    throw InvalidPattern("a template needs a word beside its placeholders");
  }
  return pattern;
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
  if (amount_) return fitWithAmount(message);
  auto payee = payeeIn(message, 0, literals_.size() - 1);
  if (!payee) return std::nullopt;
  return PatternFit{.amounts = {}, .payee = *std::move(payee)};
}

// Matches as little as possible before and after {payee}, so that {payee} gets the rest. Without
// {payee} it does not matter how the placeholders share the text.
std::optional<std::string> MessagePattern::payeeIn(std::string_view text, std::size_t first,
                                                   std::size_t last) const {
  if (first == last) {
    return text == literals_[first] ? std::optional<std::string>("") : std::nullopt;
  }
  const bool isHere = payee_ && *payee_ >= first && *payee_ < last;
  const std::size_t middle = isHere ? *payee_ : first;
  const Literals literals(literals_);
  const auto front = endOfShortestFront(text, literals.subspan(first, middle - first + 1));
  const auto back = beginOfShortestBack(text, literals.subspan(middle + 1, last - middle));
  if (!front || !back || *front >= *back) return std::nullopt;
  if (!isHere) return "";
  return std::string(text.substr(*front, *back - *front));
}

// The first two numbers of `message` that {amount} may match.
std::vector<MessageNumber> MessagePattern::amountsIn(std::string_view message) const {
  const Literals literals(literals_);
  const Literals front = literals.first(*amount_);
  const Literals back = literals.subspan(*amount_ + 2);
  const std::string& before = literals_[*amount_];
  const std::string& behind = literals_[*amount_ + 1];
  const auto frontEnd = front.empty() ? 0 : endOfShortestFront(message, front);
  const auto backBegin = back.empty() ? message.size() : beginOfShortestBack(message, back);
  if (!frontEnd || !backBegin) return {};
  const auto mayBegin = [&](std::size_t at) {
    if (!message.substr(0, at).ends_with(before)) return false;
    const std::size_t begin = at - before.size();
    return front.empty() ? begin == 0 : begin > *frontEnd;
  };
  const auto mayEnd = [&](std::size_t at) {
    if (!message.substr(at).starts_with(behind)) return false;
    const std::size_t end = at + behind.size();
    return back.empty() ? end == message.size() : end < *backBegin;
  };
  std::vector<MessageNumber> amounts;
  for (std::size_t at = 0; at < message.size(); ++at) {
    if (!mayBegin(at)) continue;
    for (MessageNumber& number : numbersAt(message, at)) {
      if (mayEnd(number.end)) amounts.push_back(std::move(number));
      if (amounts.size() > 1) return amounts;
    }
  }
  return amounts;
}

std::optional<PatternFit> MessagePattern::fitWithAmount(std::string_view message) const {
  PatternFit fit;
  const std::vector<MessageNumber> amounts = amountsIn(message);
  if (amounts.empty()) return std::nullopt;
  for (const MessageNumber& amount : amounts) fit.amounts.push_back(amount.digits);
  if (!payee_ || amounts.size() > 1) return fit;
  const MessageNumber& amount = amounts.front();
  const auto payee = *payee_ < *amount_
                         ? payeeIn(message.substr(0, amount.begin), 0, *amount_)
                         : payeeIn(message.substr(amount.end), *amount_ + 1, literals_.size() - 1);
  fit.payee = payee.value_or("");
  return fit;
}

}  // namespace kivo::recognition
