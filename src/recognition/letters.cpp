#include "recognition/letters.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

#include "names/name_fold.h"

namespace kivo::recognition {
namespace {

// The first bytes of characters that have several bytes and are not letters.
constexpr auto markFronts = std::to_array<std::string_view>(
    {"\xC2\xA0", "\xC2\xA1", "\xC2\xA2", "\xC2\xA3",     "\xC2\xA4",     "\xC2\xA5",     "\xC2\xA6",
     "\xC2\xA7", "\xC2\xA8", "\xC2\xA9", "\xC2\xAB",     "\xC2\xAC",     "\xC2\xAD",     "\xC2\xAE",
     "\xC2\xAF", "\xC2\xB0", "\xC2\xB1", "\xC2\xB2",     "\xC2\xB3",     "\xC2\xB4",     "\xC2\xB6",
     "\xC2\xB7", "\xC2\xB8", "\xC2\xB9", "\xC2\xBB",     "\xC2\xBF",     "\xC3\x97",     "\xC3\xB7",
     "\xD6\x8F", "\xD8\x8B", "\xD8\x9B", "\xE0\xA7\xB3", "\xE0\xB8\xBF", "\xE1\x9F\x9B", "\xE2\x80",
     "\xE2\x81", "\xE2\x82", "\xE2\x83", "\xE2\x84",     "\xE2\x86",     "\xE2\x88",     "\xE2\x89",
     "\xE2\x96", "\xE2\x97", "\xE2\x98", "\xE2\x9A",     "\xE2\x9B",     "\xE2\x9C",     "\xE2\x9D",
     "\xE2\x9E", "\xE2\xAD", "\xE3\x80", "\xEF\xB7\xBC", "\xEF\xBF\xBD", "\xF0\x9F"});

static_assert(std::ranges::is_sorted(markFronts));

// For each byte, where the entries of `markFronts` begin that begin with it or a greater one.
constexpr auto frontsFrom = [] {
  constexpr std::size_t bytes = 256;
  std::array<std::size_t, bytes + 1> from{};
  for (std::size_t byte = 0; byte <= bytes; ++byte) {
    from.at(byte) =
        static_cast<std::size_t>(std::ranges::count_if(markFronts, [byte](std::string_view front) {
          return static_cast<unsigned char>(front[0]) < byte;
        }));
  }
  return from;
}();

}  // namespace

bool isLetter(std::string_view character) {
  if (character.size() == 1) {
    const auto byte = static_cast<unsigned char>(character[0]);
    return byte < 0x80 && std::isalpha(byte) != 0;
  }
  const auto byte = static_cast<unsigned char>(character[0]);
  for (std::size_t at = frontsFrom.at(byte); at < frontsFrom.at(byte + 1U); ++at) {
    if (character.starts_with(markFronts.at(at))) return false;
  }
  return true;
}

// Most words are of ASCII letters, which need no ICU.
std::string folded(std::string_view word) {
  const bool ascii = std::ranges::all_of(
      word, [](char character) { return static_cast<unsigned char>(character) < 0x80; });
  if (!ascii) return names::foldedName(word);
  std::string small(word);
  for (char& letter : small) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return small;
}

}  // namespace kivo::recognition
