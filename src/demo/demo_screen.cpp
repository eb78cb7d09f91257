#include "demo/demo_screen.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <vector>

#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo {

using linux_platform::columnsOf;

namespace {

constexpr std::size_t labelWidth = 15;
constexpr std::size_t widest = 100;

bool wantsColour() {
  const char* const noColour = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return linux_platform::onTerminal() && (noColour == nullptr || *noColour == '\0') &&
         (terminal == nullptr || std::string_view(terminal) != "dumb");
}

std::size_t lineWidth() {
  if (!linux_platform::onTerminal()) return 80;
  return std::clamp(linux_platform::screenWidth(), 2 * labelWidth, widest);
}

// Wraps `line` to `width` columns. A longer word is not broken.
std::vector<std::string> wrapped(const std::string& line, std::size_t width) {
  if (columnsOf(line) <= width) return {line};
  std::vector<std::string> lines{""};
  std::size_t begin = 0;
  while (begin < line.size()) {
    const std::size_t end = std::min(line.find(' ', begin), line.size());
    const std::string word = line.substr(begin, end - begin);
    if (!lines.back().empty() && columnsOf(lines.back()) + 1 + columnsOf(word) > width) {
      lines.emplace_back();
    }
    lines.back() += (lines.back().empty() ? "" : " ") + word;
    begin = end + 1;
  }
  return lines;
}

// The lines of `text`, wrapped and with control characters escaped, without empty lines at the end.
std::vector<std::string> shownLines(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  text.remove_suffix(text.size() - std::min(text.size(), text.find_last_not_of("\r\n") + 1));
  while (true) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const auto line = linux_platform::escapedSentence(text.substr(0, end));
    for (std::string& part : wrapped(line, width)) lines.push_back(std::move(part));
    if (end == text.size()) return lines;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

DemoScreen::DemoScreen() : coloured_(wantsColour()), width_(lineWidth()) {}

void DemoScreen::heading(std::string_view text) {
  write("\n" + toned(linux_platform::escapedSentence(text), Tone::strong) + "\n");
}

void DemoScreen::line(std::string_view text, Tone tone) {
  write(toned(linux_platform::escapedSentence(text), tone) + "\n");
}

void DemoScreen::piece(std::string_view label, std::string_view text, Tone tone) {
  std::string margin = "  " + std::string(label);
  margin.resize(std::max(margin.size() + 1, labelWidth), ' ');
  for (const std::string& line : shownLines(text, width_ - labelWidth)) {
    write((line.empty() ? "" : toned(margin, Tone::quiet) + toned(line, tone)) + "\n");
    if (!line.empty()) margin.assign(labelWidth, ' ');
  }
}

void DemoScreen::table(std::string_view text) {
  for (const std::string& line : shownLines(text, std::numeric_limits<std::size_t>::max())) {
    write("  " + line + "\n");
  }
}

std::string DemoScreen::toned(std::string_view text, Tone tone) const {
  std::string plain(text);
  if (!coloured_ || tone == Tone::plain) return plain;
  const char* const sequence = tone == Tone::strong  ? "\x1b[1m"
                               : tone == Tone::quiet ? "\x1b[2m"
                               : tone == Tone::good  ? "\x1b[1;32m"
                                                     : "\x1b[1;31m";
  return sequence + plain + "\x1b[0m";
}

void DemoScreen::write(const std::string& text) {
  if (!(std::cout << text << std::flush)) throw ScreenIsGone();
}

}  // namespace kivo
