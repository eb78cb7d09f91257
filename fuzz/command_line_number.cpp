// Property: a typed text is accepted as a number exactly when it is an optional sign, digits with
// an optional point and an optional exponent, and finite; its value is then that of C's strtod. Any
// other text changes nothing.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/app_intents/intent_parameter.h"
#include "property.h"

namespace {

// Removes the digits at the beginning of `text`; returns their number.
std::size_t takeDigits(std::string_view& text) {
  std::size_t count = 0;
  for (; !text.empty() && text.front() >= '0' && text.front() <= '9'; ++count) {
    text.remove_prefix(1);
  }
  return count;
}

bool take(std::string_view& text, std::string_view choices) {
  if (text.empty() || choices.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

bool isNumberByItsForm(std::string_view text) {
  take(text, "+-");
  std::size_t digits = takeDigits(text);
  if (take(text, ".")) digits += takeDigits(text);
  if (digits == 0) return false;
  if (take(text, "eE")) {
    take(text, "+-");
    if (takeDigits(text) == 0) return false;
  }
  return text.empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using kivo::fuzz::require;
  constexpr double before = -271.25;
  const std::string text(reinterpret_cast<const char*>(data), size);
  // The process keeps the C locale, so that strtod here is that of the C locale.
  const double expected = std::strtod(text.c_str(), nullptr);
  const bool isNumber = isNumberByItsForm(text) && std::isfinite(expected);

  kivo::platform::IntentParameter<double> amount(
      {.name = "amount", .title = {"Amount"}, .description = {"A number"}});
  amount.assign(before);
  require(amount.setFromText(text) == isNumber, "a text is a number by its form");
  const double kept = isNumber ? expected : before;
  require(std::bit_cast<std::uint64_t>(amount.value()) == std::bit_cast<std::uint64_t>(kept),
          "a number is the one strtod reads");
  return 0;
}
