#include "platform/linux/locale/amount_format.h"

#include <utility>

#include <unicode/numfmt.h>

#include "platform/foundation/fatal_stop.h"
#include "platform/linux/locale/currency_codes.h"
#include "platform/linux/locale/device_locale.h"

namespace kivo::linux_platform {

struct AmountFormat::Format {
  std::unique_ptr<icu::NumberFormat> icu;
};

AmountFormat::AmountFormat(std::string_view currencyCode, int decimals, Currency currency) {
  const icu::Locale locale(deviceLocale("LC_MONETARY").c_str());
  const bool isShown = currency == Currency::shown && isKnownCurrency(currencyCode);
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> format(
      icu::NumberFormat::createInstance(locale, isShown ? UNUM_CURRENCY : UNUM_DECIMAL, status));
  if (U_SUCCESS(status) && isShown) {
    auto code = icu::UnicodeString::fromUTF8(std::string(currencyCode));
    format->setCurrency(code.getTerminatedBuffer(), status);
  }
  if (U_FAILURE(status)) platform::fatalStop("number data cannot be read");
  // The locale's own number of decimals hides those that are out of use, such as the Iraqi fils.
  format->setMinimumFractionDigits(decimals);
  format->setMaximumFractionDigits(decimals);
  format_ = std::make_unique<Format>(Format{std::move(format)});
}

AmountFormat::~AmountFormat() = default;
AmountFormat::AmountFormat(AmountFormat&& other) noexcept = default;
AmountFormat& AmountFormat::operator=(AmountFormat&& other) noexcept = default;

std::string AmountFormat::text(const std::string& plain) const {
  icu::UnicodeString text;
  UErrorCode status = U_ZERO_ERROR;
  format_->icu->format(plain, text, nullptr, status);
  std::string utf8;
  return U_SUCCESS(status) ? text.toUTF8String(utf8) : plain;
}

}  // namespace kivo::linux_platform
