// How an amount reads to the person. Does not say whether it was spent or received.
#pragma once

#include <string>

#include "store/shared_store.h"

namespace kivo {

/// The currency of a person for whom the app has stored none.
inline constexpr std::string_view defaultCurrency = "EGP";

namespace AmountFormatter {

/// The magnitude of `amount` in the currency that `store` holds under `currency`, as the device's
/// locale writes it, UTF-8. A stored code for which the platform has no text gives the plain
/// decimal number instead ("250.0").
std::string format(const SharedStore& store, double amount);

}  // namespace AmountFormatter
}  // namespace kivo
