#include "platform/linux/foundation/safe_text.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

enum class Form { plain, sentence, json };

constexpr UChar32 firstNotASCII = 0x80;

std::string written(const char* form, unsigned unit) {
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), form, unit);
  return digits.data();
}

// JSON's \u covers the first plane only; other characters are a surrogate pair.
std::string escape(UChar32 character, Form form) {
  if (character == '\n') return "\\n";
  if (character == '\r') return "\\r";
  if (character == '\t') return "\\t";
  const auto code = static_cast<unsigned>(character);
  if (code < 0xa0 && form != Form::json) return written("\\x%02x", code);
  if (code <= 0xffff) return written("\\u%04x", code);
  if (form != Form::json) return written("\\U%08x", code);
  return written("\\u%04x", U16_LEAD(code)) + written("\\u%04x", U16_TRAIL(code));
}

// Whether the character is invisible or its appearance unknown.
bool isHidden(UChar32 character) {
  if (character < firstNotASCII) return character < 0x20 || character == 0x7f;
  constexpr std::uint32_t hidden = U_GC_CC_MASK | U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK |
                                   U_GC_CS_MASK | U_GC_CO_MASK | U_GC_CN_MASK;
  return (U_GET_GC_MASK(character) & hidden) != 0 ||
         u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

// Persian words and emoji are spelled with these. They have no direction, so they reorder nothing.
// Elsewhere they would only be invisible.
bool joinsOrDresses(UChar32 character) {
  constexpr UChar32 nonJoiner = 0x200c;
  constexpr UChar32 joiner = 0x200d;
  constexpr UChar32 asText = 0xfe0e;
  constexpr UChar32 asEmoji = 0xfe0f;
  return character == nonJoiner || character == joiner || character == asText ||
         character == asEmoji;
}

bool canBeJoined(UChar32 character) {
  constexpr std::uint32_t joined =
      U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK | U_GC_SO_MASK | U_GC_SK_MASK;
  return (U_GET_GC_MASK(character) & joined) != 0;
}

bool isDirectionMark(UChar32 character) {
  constexpr UChar32 leftToRight = 0x200e;
  constexpr UChar32 rightToLeft = 0x200f;
  constexpr UChar32 arabicLetter = 0x061c;
  return character == leftToRight || character == rightToLeft || character == arabicLetter;
}

// Looks up no character properties while the text is ASCII.
std::string escaped(std::string_view text, Form form) {
  std::string result;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto size = static_cast<std::int64_t>(text.size());
  UChar32 shown = ' ';  // the previous character
  for (std::int64_t at = 0; at < size;) {
    const std::int64_t begin = at;
    UChar32 character = 0;
    U8_NEXT(bytes, at, size, character);
    if (character < 0) {
      result += "\ufffd";
      shown = ' ';
    } else if (!isHidden(character) || (joinsOrDresses(character) && canBeJoined(shown))) {
      result += text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(at - begin));
      shown = character;
    } else if (form != Form::sentence || !isDirectionMark(character)) {
      result += escape(character, form);
      shown = ' ';
    }
  }
  return result;
}

bool onTerminal() { return isatty(STDOUT_FILENO) == 1; }

}  // namespace

std::string escapedControls(std::string_view text) { return escaped(text, Form::plain); }

std::string escapedSentence(std::string_view text) { return escaped(text, Form::sentence); }

std::string escapedJSON(std::string_view text) { return escaped(text, Form::json); }

std::string forStandardOutput(std::string_view text) {
  return onTerminal() ? escapedControls(text) : std::string(text);
}

std::string sentenceForStandardOutput(std::string_view text) {
  return onTerminal() ? escapedSentence(text) : std::string(text);
}

std::string jsonForStandardOutput(std::string_view text) {
  return onTerminal() ? escapedJSON(text) : std::string(text);
}

}  // namespace kivo::linux_platform
