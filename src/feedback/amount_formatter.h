// How an amount reads to the person. Does not say whether it was spent or received.
#pragma once

#include <string>

#include "store/shared_store.h"

namespace kivo {

namespace AmountFormatter {

/// The code that `store` holds under `currency`, exactly as stored; "EGP" when it holds none.
std::string currencyCode(const SharedStore& store);

/// The magnitude of `amount` in the currency that `store` holds under `currency`, as the device's
/// locale writes it, UTF-8. A stored code for which the platform has no text gives the plain
/// decimal number instead ("250.0").
std::string format(const SharedStore& store, double amount);

}  // namespace AmountFormatter
}  // namespace kivo
