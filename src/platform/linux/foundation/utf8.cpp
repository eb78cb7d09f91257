#include "platform/foundation/utf8.h"

#include <unicode/unistr.h>

namespace kivo::platform {

// The way through UTF-16 puts U+FFFD where it is due.
std::string repairedUtf8(std::string_view bytes) {
  std::string repaired;
  return icu::UnicodeString::fromUTF8(bytes).toUTF8String(repaired);
}

}  // namespace kivo::platform
