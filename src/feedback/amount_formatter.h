// Formats an amount for the user, without its sign.
#pragma once

#include <string>

#include "store/shared_store.h"

namespace kivo {

namespace AmountFormatter {

/// Returns the text under `currency` exactly as stored; "EGP" when it is absent.
std::string currencyCode(const SharedStore& store);

/// Formats the magnitude of `amount` in the stored currency and the device's locale, as UTF-8. If
/// the platform has no format for the stored code, returns the plain decimal number ("250.0").
std::string format(const SharedStore& store, double amount);

}  // namespace AmountFormatter
}  // namespace kivo
