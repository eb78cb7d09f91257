// Formats the demonstration's texts and writes them to standard output.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kivo {

/// Thrown when standard output cannot be written, such as a closed pipe.
class ScreenIsGone : public std::runtime_error {
 public:
  ScreenIsGone() : std::runtime_error("standard output is closed") {}
};

/// Writes headings and labelled texts, and flushes each. Texts are UTF-8 from any source: control
/// characters are escaped. Uses colours on a terminal unless NO_COLOR is set to a text that is not
/// empty or TERM is "dumb". Each writing operation throws ScreenIsGone when the output fails.
class DemoScreen {
 public:
  enum class Tone { plain, strong, quiet, good, bad };

  /// Reads the terminal's width and whether to use colours.
  DemoScreen();

  /// Writes an empty line and then `text` as one line.
  void heading(std::string_view text);
  /// Writes `text` as one line.
  void line(std::string_view text, Tone tone = Tone::plain);
  /// Writes the lines of `text` indented, and does not wrap them.
  void table(std::string_view text);
  /// Writes `label` and, in a column beside it, the lines of `text`, wrapped between words to the
  /// terminal's width.
  void piece(std::string_view label, std::string_view text, Tone tone = Tone::plain);

 private:
  [[nodiscard]] std::string toned(std::string_view text, Tone tone) const;
  static void write(const std::string& text);

  bool coloured_;
  std::size_t width_;
};

}  // namespace kivo
