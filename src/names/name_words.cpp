#include "names/name_words.h"

#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "names/name_fold.h"

namespace kivo::names {

std::vector<std::string> foldedWords(std::string_view utf8) {
  constexpr std::uint32_t between = U_GC_Z_MASK | U_GC_P_MASK | U_GC_S_MASK | U_GC_C_MASK;
  const std::string folded = foldedName(utf8);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(folded.data());
  const auto length = static_cast<std::int32_t>(folded.size());
  std::vector<std::string> words;
  bool inWord = false;
  for (std::int32_t at = 0; at < length;) {
    const std::int32_t begin = at;
    UChar32 character = 0;
    U8_NEXT_OR_FFFD(bytes, at, length, character);
    const bool belongs = (U_GET_GC_MASK(character) & between) == 0;
    if (belongs && !inWord) words.emplace_back();
    if (belongs)
      words.back().append(folded, static_cast<std::size_t>(begin),
                          static_cast<std::size_t>(at - begin));
    inWord = belongs;
  }
  return words;
}

}  // namespace kivo::names
