#include "sms_watcher/sender_pattern.h"

#include <string>

#include "platform/foundation/character_set.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::SenderPattern {
namespace {

using linux_platform::Failure;

constexpr std::string_view digits = "0123456789";
constexpr std::string_view partingMarks = " -.()";

bool isPhoneNumber(std::string_view text) {
  return text.find_first_of(digits) != std::string_view::npos &&
         text.find_first_not_of("0123456789+* -.()") == std::string_view::npos;
}

bool isValid(std::string_view pattern) {
  const std::string_view trimmed = platform::trimmingWhitespaces(pattern);
  return trimmed.find_first_not_of('*') != std::string_view::npos;
}

// Normalizes a sender for comparison.
std::string comparable(std::string_view text) {
  text = platform::trimmingWhitespaces(text);
  if (!isPhoneNumber(text)) return std::string(text);
  std::string number;
  for (const char mark : text) {
    if (partingMarks.find(mark) == std::string_view::npos) number += mark;
  }
  return number.starts_with("00") ? "+" + number.substr(2) : number;
}

// Whether `text` matches `pattern`. Each * first takes as little as possible, and more when the
// rest does not match.
bool fits(std::string_view pattern, std::string_view text) {
  std::size_t at = 0;
  std::size_t read = 0;
  std::size_t afterStar = std::string_view::npos;
  std::size_t starEnd = 0;
  while (read < text.size()) {
    if (at < pattern.size() && pattern[at] == '*') {
      afterStar = ++at;
      starEnd = read;
    } else if (at < pattern.size() && pattern[at] == text[read]) {
      ++at;
      ++read;
    } else if (afterStar != std::string_view::npos) {
      at = afterStar;
      read = ++starEnd;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

}  // namespace

bool means(std::string_view pattern, std::string_view sender) {
  return isValid(pattern) && fits(comparable(pattern), comparable(sender));
}

void check(std::string_view pattern) {
  if (isValid(pattern)) return;
  if (platform::trimmingWhitespaces(pattern).empty()) throw Failure("a sender is empty");
  throw Failure("a sender of * alone would hand on the messages of everybody");
}

}  // namespace kivo::SenderPattern
