// Codes of currencies. Knows no signs or words for them.
#pragma once

#include <array>
#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace kivo::money {

/// Three letters from A to Z, as ISO 4217 writes codes; not each of them is in use.
class CurrencyCode {
 public:
  /// Reads three ASCII letters of either case; absent for any other text.
  static constexpr std::optional<CurrencyCode> fromText(std::string_view text) {
    CurrencyCode code;
    if (text.size() != code.letters_.size()) return std::nullopt;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const bool isSmall = text[at] >= 'a' && text[at] <= 'z';
      const char letter = isSmall ? static_cast<char>(text[at] - 'a' + 'A') : text[at];
      if (letter < 'A' || letter > 'Z') return std::nullopt;
      code.letters_[at] = letter;
    }
    return code;
  }
  /// XXX, the code of ISO 4217 for no currency.
  constexpr CurrencyCode() = default;
  /// Reads a constant, also in the place of a code, and does not compile when that is not a code.
  // NOLINTNEXTLINE(google-explicit-constructor)
  consteval CurrencyCode(const char (&code)[4]) : letters_(fromText(code).value().letters_) {}

  [[nodiscard]] std::string text() const { return {letters_.begin(), letters_.end()}; }

  // clang-tidy takes the 0 of a comparison for a pointer.
  // NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const CurrencyCode&) const = default;

 private:
  std::array<char, 3> letters_{'X', 'X', 'X'};
};

}  // namespace kivo::money
