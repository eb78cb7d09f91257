#include "platform/linux/locale/currency_codes.h"

#include <string>

#include <unicode/ucurr.h>
#include <unicode/unistr.h>

namespace kivo::linux_platform {

bool isKnownCurrency(std::string_view code) {
  icu::UnicodeString upper = icu::UnicodeString::fromUTF8(
      icu::StringPiece(code.data(), static_cast<std::int32_t>(code.size())));
  upper.toUpper();
  // ICU reads only the first three letters, and returns 0 for unknown codes.
  return upper.length() == 3 && ucurr_getNumericCode(upper.getTerminatedBuffer()) != 0;
}

}  // namespace kivo::linux_platform
