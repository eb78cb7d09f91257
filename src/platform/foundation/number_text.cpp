#include "platform/foundation/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

#include "platform/foundation/c_locale.h"

namespace kivo::platform {
namespace {

bool isWrittenPlain(double value) {
  const double magnitude = std::fabs(value);
  return magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
}

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

std::string doubleText(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";

  const bool plain = isWrittenPlain(value);
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 plain ? std::chars_format::fixed : std::chars_format::scientific);
  std::string text(digits.data(), end.ptr);
  if (plain && text.find('.') == std::string::npos) text += ".0";
  return text;
}

std::optional<double> doubleFromText(std::string_view text) {
  if (text.empty() || isBlank(text.front())) return std::nullopt;
  const std::string terminated(text);
  char* end = nullptr;
  const double value = strtod_l(terminated.c_str(), &end, cLocale());
  if (end != terminated.c_str() + terminated.size()) return std::nullopt;
  return value;
}

std::string integerText(std::int64_t value) { return std::to_string(value); }

std::optional<std::int64_t> integerFromText(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace kivo::platform
