#include "platform/linux/store/settings_toml.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {
namespace {

// The quotes at the front of `text`, one or three of a kind; empty for none.
std::string_view openingQuotes(std::string_view text) {
  if (text.front() != '"' && text.front() != '\'') return {};
  return text.starts_with("\"\"\"") || text.starts_with("'\'\'") ? text.substr(0, 3)
                                                                 : text.substr(0, 1);
}

// The length of `quotes` at the front of `text`, which ends there; three quotes may have two more
// of their kind before them, which belong to the text. 0 when it goes on.
std::size_t closingLength(std::string_view text, std::string_view quotes) {
  if (!text.starts_with(quotes)) return 0;
  if (quotes.size() == 1) return 1;
  constexpr std::size_t most = 5;
  return std::min({text.find_first_not_of(quotes.front()), text.size(), most});
}

// The line of the first dot that is neither within quotes nor in a comment.
std::optional<std::size_t> lineOfBareDot(std::string_view text) {
  std::size_t line = 1;
  std::string_view quotes;  // around the text here
  while (!text.empty()) {
    std::size_t length = 1;
    if (text.front() == '\n') {
      ++line;
      if (quotes.size() == 1) quotes = {};
    } else if (quotes.empty()) {
      if (text.front() == '.') return line;
      if (text.front() == '#') length = text.find('\n');
      quotes = openingQuotes(text);
      length = std::max(length, quotes.size());
    } else if (const std::size_t closing = closingLength(text, quotes); closing > 0) {
      length = closing;
      quotes = {};
    } else if (quotes.front() == '"' && (text.starts_with(R"(\\)") || text.starts_with(R"(\")"))) {
      length = 2;
    }
    text.remove_prefix(std::min(length, text.size()));
  }
  return std::nullopt;
}

std::string atLine(std::size_t line) { return "line " + std::to_string(line) + ": "; }

}  // namespace

toml::table settingsTable(const std::string& text) {
  if (const auto line = lineOfBareDot(text)) {
    throw Failure(atLine(*line) + "a dot is allowed only within quotes");
  }
  toml::parse_result result = toml::parse(text);
  if (result) return std::move(result).table();
  // The library's message would quote the file.
  throw Failure(atLine(result.error().source().begin.line) + "this is not valid TOML");
}

}  // namespace kivo::linux_platform
