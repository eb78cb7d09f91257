#include "names/letter_case.h"

#include <string>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kivo::names {

LetterCase caseOfFirst(std::string_view utf8) {
  constexpr std::size_t longest = 4;  // bytes of a character
  if (utf8.empty()) return LetterCase::none;
  const auto front = static_cast<unsigned char>(utf8.front());
  const UChar32 letter =
      front < 0x80 ? front
                   : icu::UnicodeString::fromUTF8(std::string(utf8.substr(0, longest))).char32At(0);
  if (u_isupper(letter) != 0) return LetterCase::capital;
  return u_islower(letter) != 0 ? LetterCase::small : LetterCase::none;
}

}  // namespace kivo::names
