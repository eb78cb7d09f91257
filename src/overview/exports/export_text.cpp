#include "overview/exports/export_text.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include <openssl/sha.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kivo::overview {

using book::LedgerEntry;

namespace {

bool separates(UChar32 c) {
  return u_isUWhiteSpace(c) || u_charType(c) == U_CONTROL_CHAR || U_IS_UNICODE_NONCHAR(c);
}

}  // namespace

std::string oneLine(std::string_view text) {
  const auto whole = icu::UnicodeString::fromUTF8(text);
  icu::UnicodeString line;
  bool separated = false;
  for (std::int32_t at = 0; at < whole.length(); at = whole.moveIndex32(at, 1)) {
    const UChar32 c = whole.char32At(at);
    if (separates(c)) {
      separated = !line.isEmpty();
      continue;
    }
    if (separated) line.append(u' ');
    separated = false;
    line.append(c);
  }
  std::string bytes;
  return line.toUTF8String(bytes);
}

std::string withReplaced(std::string text, char from, char to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

std::string importId(const LedgerEntry& entry) {
  constexpr std::size_t shownBytes = 8;
  constexpr std::string_view digits = "0123456789abcdef";
  std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
  SHA256(reinterpret_cast<const unsigned char*>(entry.key.data()), entry.key.size(), hash.data());
  std::string id = std::to_string(entry.id) + "-";
  for (std::size_t byte = 0; byte < shownBytes; ++byte) {
    id += digits[hash.at(byte) >> 4U];
    id += digits[hash.at(byte) & 0xFU];
  }
  return id;
}

}  // namespace kivo::overview
