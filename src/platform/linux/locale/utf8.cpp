#include "platform/foundation/utf8.h"

#include <cstdint>

#include <unicode/unistr.h>
#include <unicode/ustring.h>

namespace kivo::platform {
namespace {

bool isValid(std::string_view bytes) {
  UErrorCode found = U_ZERO_ERROR;
  std::int32_t length = 0;  // without a destination, ICU only counts
  u_strFromUTF8(nullptr, 0, &length, bytes.data(), static_cast<std::int32_t>(bytes.size()), &found);
  return found != U_INVALID_CHAR_FOUND;
}

}  // namespace

// ICU's conversion to UTF-16 replaces each ill-formed subpart by U+FFFD.
std::string repairedUtf8(std::string_view bytes) {
  if (isValid(bytes)) return std::string(bytes);
  std::string repaired;
  return icu::UnicodeString::fromUTF8(bytes).toUTF8String(repaired);
}

}  // namespace kivo::platform
