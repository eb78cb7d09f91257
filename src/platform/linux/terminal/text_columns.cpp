#include "platform/linux/terminal/text_columns.h"

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
  std::size_t taken = 1;  // the ellipsis
  std::size_t end = 0;
  for (std::size_t at = 0; at < text.size();) {
    taken += columnsOfCharacter(next(text, at));
    if (taken > columns) break;
    end = at;
  }
  return std::string(text.substr(0, end)) + "…";
}

}  // namespace kivo::linux_platform
