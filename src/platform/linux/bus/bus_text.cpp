#include "platform/linux/bus/bus_text.h"

#include "platform/foundation/utf8.h"

namespace kivo::linux_platform {
namespace {

// The first character of `text`, which is valid UTF-8 and not empty.
std::string_view firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  return text.substr(0, lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4);
}

// The bus has no NUL, and its receivers take no noncharacters (U+FDD0 to U+FDEF, and the last two
// of each plane).
bool isCarried(std::string_view character) {
  if (character == std::string_view("\0", 1)) return false;
  if (character >= "\uFDD0" && character <= "\uFDEF") return false;
  if (character.size() < 3) return true;
  const bool endOfPlane =
      (static_cast<unsigned char>(character[character.size() - 3]) & 0x0F) == 0x0F &&
      character[character.size() - 2] == '\xBF' && character.back() >= '\xBE';
  return !endOfPlane;
}

}  // namespace

std::string busText(std::string_view text) {
  constexpr std::string_view replacement = "\uFFFD";
  const std::string valid = platform::repairedUtf8(text);
  std::string result;
  for (std::size_t at = 0; at < valid.size();) {
    const std::string_view character = firstCharacter(std::string_view(valid).substr(at));
    result += isCarried(character) ? character : replacement;
    at += character.size();
  }
  return result;
}

}  // namespace kivo::linux_platform
