// Patterns of names, in which * stands for any characters.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::names {

/// A pattern of names, which are compared by `foldedName`. In its text `*` is any characters or
/// none, `\*` is a star, and `\\` is a backslash, as is one before any other character.
/// Thread-safe.
class NamePattern {
 public:
  /// Reads `utf8`; nullopt when nothing but blanks is beside its stars, since it would match names
  /// of any kind. Throws what `foldedName` throws.
  static std::optional<NamePattern> fromText(std::string_view utf8);
  /// As `fromText`, of a text that `text` returned.
  static std::optional<NamePattern> fromFoldedText(std::string_view folded);

  /// The text of the pattern that matches the name `utf8` alone: its stars and backslashes, those
  /// of other widths too, with a backslash before each. Throws what `foldedName` throws.
  static std::string textFor(std::string_view utf8);

  /// The folded text, the same for all ways to write the pattern.
  [[nodiscard]] std::string text() const;
  [[nodiscard]] bool hasWildcard() const { return betweenStars_.size() > 1; }
  /// Whether this one is to be preferred where both match a name: one without a wildcard to one
  /// with, then the one with more characters beside its stars.
  [[nodiscard]] bool isMoreExactThan(const NamePattern& other) const;
  /// Whether the whole of `foldedName` matches, a name as `foldedName` returns it.
  [[nodiscard]] bool matches(std::string_view foldedName) const;

 private:
  explicit NamePattern(std::vector<std::string> betweenStars);

  // Folded and without escapes.
  std::vector<std::string> betweenStars_;
  // The characters of `betweenStars_`.
  std::size_t characters_;
};

}  // namespace kivo::names
