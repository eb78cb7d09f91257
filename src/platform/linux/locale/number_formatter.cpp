#include "platform/foundation/number_formatter.h"

#include <algorithm>
#include <memory>

#include <unicode/numfmt.h>

#include "platform/linux/locale/device_locale.h"

namespace kivo::platform {
namespace {

bool isAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// ICU accepts any text as a currency and shows a wrong one: dollars for "E".
bool isCurrencyCode(const std::string& code) {
  return code.empty() || (code.size() == 3 && std::all_of(code.begin(), code.end(), isAsciiLetter));
}

}  // namespace

std::optional<std::string> NumberFormatter::string(double value) const {
  if (!isCurrencyCode(currencyCode)) return std::nullopt;

  const icu::Locale locale(linux_platform::deviceLocale("LC_MONETARY").c_str());
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::NumberFormat> format(
      icu::NumberFormat::createInstance(locale, UNUM_CURRENCY, status));
  if (U_FAILURE(status)) return std::nullopt;
  format->setCurrency(icu::UnicodeString::fromUTF8(currencyCode).getTerminatedBuffer(), status);
  if (U_FAILURE(status)) return std::nullopt;

  icu::UnicodeString text;
  std::string utf8;
  return format->format(value, text).toUTF8String(utf8);
}

}  // namespace kivo::platform
