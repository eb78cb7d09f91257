// How the demonstration is laid out on standard output. Says nothing of its own.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kivo {

/// Nobody reads standard output any more.
class ScreenIsGone : public std::runtime_error {
 public:
  ScreenIsGone() : std::runtime_error("standard output is closed") {}
};

/// Writes headings and labelled pieces of text, each at once. Texts are UTF-8 and may come from
/// anywhere: their control characters are shown as escapes. In colour on a terminal when NO_COLOR
/// is unset or empty, and plain otherwise. Every operation throws ScreenIsGone.
class DemoScreen {
 public:
  enum class Tone { plain, strong, quiet, good, bad };

  DemoScreen();

  /// A line on its own, below an empty one.
  void heading(std::string_view text);
  /// A line on its own.
  void line(std::string_view text, Tone tone = Tone::plain);
  /// Lines whose columns stay below each other: they are not wrapped.
  void table(std::string_view text);
  /// `text` beside its label, line by line and wrapped between words to the screen's width.
  void piece(std::string_view label, std::string_view text, Tone tone = Tone::plain);

 private:
  [[nodiscard]] std::string toned(std::string_view text, Tone tone) const;
  static void write(const std::string& text);

  bool coloured_;
  std::size_t width_;
};

}  // namespace kivo
