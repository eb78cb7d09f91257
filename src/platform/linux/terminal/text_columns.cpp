#include "platform/linux/terminal/text_columns.h"

#include <algorithm>
#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace kivo::linux_platform {
namespace {

std::size_t columnsOfCharacter(UChar32 character) {
  constexpr std::uint32_t noRoom = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK | U_GC_CC_MASK;
  if ((U_GET_GC_MASK(character) & noRoom) != 0) return 0;
  // Drawn as part of the syllable that a leading consonant begins.
  const int syllable = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
  if (syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO) return 0;
  const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// Reads the character at `at` and advances `at` past it.
UChar32 next(std::string_view text, std::size_t& at) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto size = static_cast<std::int64_t>(text.size());
  auto place = static_cast<std::int64_t>(at);
  UChar32 character = 0;
  U8_NEXT_OR_FFFD(bytes, place, size, character);
  at = static_cast<std::size_t>(place);
  return character;
}

// The length in bytes of the longest front of `text` that fits in `columns`.
std::size_t frontWithin(std::size_t columns, std::string_view text) {
  std::size_t taken = 0;
  std::size_t end = 0;
  for (std::size_t at = 0; at < text.size();) {
    taken += columnsOfCharacter(next(text, at));
    if (taken > columns) break;
    end = at;
  }
  return end;
}

}  // namespace

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (std::size_t at = 0; at < text.size();) columns += columnsOfCharacter(next(text, at));
  return columns;
}

std::string paddedTo(std::size_t columns, std::string_view text) {
  const std::size_t taken = columnsOf(text);
  return std::string(text) + std::string(columns > taken ? columns - taken : 0, ' ');
}

std::string cutTo(std::size_t columns, std::string_view text) {
  if (columnsOf(text) <= columns) return std::string(text);
  const std::size_t ellipsis = 1;
  return std::string(text.substr(0, frontWithin(columns - std::min(columns, ellipsis), text))) +
         "…";
}

std::string wrappedTo(std::size_t columns, std::string_view text, std::string_view indent) {
  const std::size_t room = columns - std::min(columns, columnsOf(indent));
  std::string lines;
  std::string line;
  const auto end = [&] {
    lines.append(indent).append(line).append("\n");
    line.clear();
  };
  while (!text.empty()) {
    std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (word.empty()) continue;
    if (!line.empty() && columnsOf(line) + 1 + columnsOf(word) > room) end();
    while (columnsOf(word) > room && frontWithin(room, word) > 0) {
      line = word.substr(0, frontWithin(room, word));
      word.remove_prefix(line.size());
      end();
    }
    line.append(line.empty() ? "" : " ").append(word);
  }
  end();
  return lines;
}

}  // namespace kivo::linux_platform
