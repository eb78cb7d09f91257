#include "sms_watcher/sender_pattern.h"

#include <string>
#include <vector>

#include "names/wildcard.h"
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

// The texts between the stars of `pattern`, which has no escapes.
std::vector<std::string> betweenStars(std::string_view pattern) {
  std::vector<std::string> between;
  for (;;) {
    const std::size_t star = pattern.find('*');
    between.emplace_back(pattern.substr(0, star));
    if (star == std::string_view::npos) return between;
    pattern.remove_prefix(star + 1);
  }
}

}  // namespace

bool means(std::string_view pattern, std::string_view sender) {
  return isValid(pattern) &&
         names::fitsBetweenStars(betweenStars(comparable(pattern)), comparable(sender));
}

void check(std::string_view pattern) {
  if (isValid(pattern)) return;
  if (platform::trimmingWhitespaces(pattern).empty()) throw Failure("a sender is empty");
  throw Failure("a sender of * alone would hand on the messages of everybody");
}

}  // namespace kivo::SenderPattern
