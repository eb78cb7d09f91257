#include "platform/app_intents/intent_parameter.h"

#include <cctype>
#include <cmath>

#include "platform/foundation/number_text.h"
#include "platform/foundation/utf8.h"

namespace kivo::platform {
namespace {

using ValueType = AnyIntentParameter::ValueType;

// The number parser also accepts hexadecimal, infinity and NaN. A person's number is an optional
// sign, digits with an optional point, and an optional exponent.
bool looksLikeADecimalNumber(const std::string& text) {
  return text.find_first_not_of("0123456789+-.eE") == std::string::npos;
}

bool fits(double number, const IntentParameterSettings& settings) {
  if (!std::isfinite(number)) return false;
  const auto& range = settings.inclusiveRange;
  return !range || (number >= range->first && number <= range->second);
}

}  // namespace

template <>
ValueType IntentParameter<std::string>::valueType() const {
  return ValueType::text;
}

template <>
bool IntentParameter<std::string>::set(IntentValue value) {
  const auto* const text = std::get_if<std::string>(&value);
  if (text == nullptr) return false;
  value_ = repairedUtf8(*text);
  return true;
}

template <>
bool IntentParameter<std::string>::setFromText(std::string text) {
  return set(std::move(text));
}

template <>
ValueType IntentParameter<double>::valueType() const {
  return ValueType::number;
}

template <>
bool IntentParameter<double>::set(IntentValue value) {
  const auto* const number = std::get_if<double>(&value);
  if (number == nullptr || !fits(*number, settings())) return false;
  value_ = *number;
  return true;
}

template <>
bool IntentParameter<double>::setFromText(std::string text) {
  const auto number = doubleFromText(text);
  return number && looksLikeADecimalNumber(text) && set(*number);
}

}  // namespace kivo::platform
